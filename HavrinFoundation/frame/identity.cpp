// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/frame/identity.h>

// HAVRIN_VERSION_NUMBER and HAVRIN_VERSION_MAJOR are the version in the topmost CMakeLists.txt.
namespace havrin {

constinit const double HavrinFoundationVersionNumber = HAVRIN_VERSION_NUMBER;

constinit const unsigned char HavrinFoundationVersionString[48] =
    "@(#)PROGRAM:HavrinFoundation  PROJECT:Havrin-" HAVRIN_VERSION_MAJOR "\n";

}  // namespace havrin
