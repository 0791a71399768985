#include <HavrinFoundation/HavrinFoundation.h>
