// SPDX-License-Identifier: Apache-2.0
// NSNumber(HavrinFoundation) and NSString(HavrinFoundation), base-36: base36.h on numbers and strings, typed and as
// messages.
//
//   base36Value(*makeNumber(36))               "10"
//   base36Value(*makeString("36"))             "10": from the decimal number that the text writes
//   base36Value(*makeString("z"))              "0": no decimal number
//   base36ValueAsBase10(*makeString("z"))      35
//   send<"base36Value">(makeNumber(36))        the string "10"
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdint>
#include <string>

namespace havrin {

/// The receiver's `integerValue` in radix 36.
[[nodiscard]] HAVRIN_EXPORT std::string base36Value(const NSNumber& number);
[[nodiscard]] HAVRIN_EXPORT std::string base36Value(const NSString& decimal);

/// The integer that the string writes in radix 36; 0 where `base36ValueAsBase10(std::string_view)` is empty, and for a
/// string with a lone surrogate.
[[nodiscard]] HAVRIN_EXPORT std::int64_t base36ValueAsBase10(const NSString& text);

inline namespace platform {

/// As `base36Value(const NSNumber&)`; null for null.
template <>
struct Message<NSNumber, "base36Value"> : Signature<Strong<NSString>()> {};
/// As `base36Value(const NSString&)`; null for null.
template <>
struct Message<NSString, "base36Value"> : Signature<Strong<NSString>()> {};
/// As `base36ValueAsBase10(const NSString&)`; 0 for null.
template <>
struct Message<NSString, "base36ValueAsBase10"> : Signature<std::int64_t()> {};

}  // namespace platform

}  // namespace havrin
