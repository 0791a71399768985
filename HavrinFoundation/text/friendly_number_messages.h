// SPDX-License-Identifier: Apache-2.0
// NSString(HavrinFoundation), compact numbers: friendly_number.h as a message.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// As `friendlyNumber`; never null.
template <>
struct ClassMessage<NSString, "friendlyStringWithNumber:"> : Signature<Strong<NSString>(std::int64_t)> {};

}  // namespace platform
}  // namespace havrin
