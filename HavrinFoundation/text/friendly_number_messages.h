// NSString(HavrinFoundation), compact numbers: friendly_number.h as a message.
#pragma once

#include <cstdint>

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/string.h>

namespace havrin::inline platform {

/// As `friendlyNumber`; never null.
template <>
struct ClassMessage<NSString, "friendlyStringWithNumber:"> : Signature<Strong<NSString>(std::int64_t)> {};

}  // namespace havrin::inline platform
