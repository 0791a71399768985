#include <HavrinFoundation/frame/identity.h>

namespace havrin {

constinit const double HavrinFoundationVersionNumber = 1.0;

constinit const unsigned char HavrinFoundationVersionString[48] = "@(#)PROGRAM:HavrinFoundation  PROJECT:Havrin-1\n";

}  // namespace havrin
