// SPDX-License-Identifier: Apache-2.0
// Whole numbers in their compact form, for people. As a message: friendly_number_messages.h.
//
//   friendlyNumber(999)            "999"
//   friendlyNumber(1'500)          "1.5k"
//   friendlyNumber(-2'300'000)     "-2.3m"
//   friendlyNumber(99'950)         "100.0k"
//   friendlyNumber(5'000'000'000)  "5000m"
#pragma once

#include <HavrinFoundation/platform/base/signed_integer.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/class_names.h>

#include <concepts>
#include <cstdint>
#include <string>

namespace havrin {

/// The number as it is below 1,000, in thousands ("k") below 1,000,000, in millions ("m") from there on: there is no
/// larger unit. There is one decimal below 100 of the unit, none from 100 upward; which of the two it is, and the
/// unit, is decided before rounding, so 999,999 is "1000k". No locale, no grouping, the decimal point is ".".
/// Result: what printf's "%.1f" or "%.0f" writes for the quotient as a double, computed without it; an exact tie goes
/// to the even digit. The smallest integer is written from its magnitude: "-9223372036855m".
[[nodiscard]] HAVRIN_EXPORT std::string friendlyNumber(std::int64_t number);
template <OtherThanInt64 Type>
std::string friendlyNumber(Type) {
  static_assert(kFitsInt64<Type>,
                "friendlyNumber takes an integer that fits std::int64_t; convert the argument explicitly");
  return {};
}

/// The same, as the string class's own function.
template <std::derived_from<NSString> ClassType>
[[nodiscard]] std::string friendlyNumber(std::int64_t number) {
  return friendlyNumber(number);
}
template <std::derived_from<NSString> ClassType, OtherThanInt64 Type>
std::string friendlyNumber(Type number) {
  return friendlyNumber(number);
}

}  // namespace havrin
