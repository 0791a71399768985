// SPDX-License-Identifier: Apache-2.0
// NSData(HavrinFoundation), hexadecimal text: hex.h on data, typed and as a message.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/data.h>

#include <string>

namespace havrin {

/// As `hexString` of the receiver's bytes.
[[nodiscard]] HAVRIN_EXPORT std::string hexString(const NSData& data);

inline namespace platform {

/// As `hexString(const NSData&)`; null for null only.
template <>
struct Message<NSData, "hexString"> : Signature<Strong<NSString>()> {};

}  // namespace platform

}  // namespace havrin
