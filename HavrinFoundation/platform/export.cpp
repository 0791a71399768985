#include <HavrinFoundation/platform/export.h>
