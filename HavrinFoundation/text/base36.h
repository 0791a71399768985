// SPDX-License-Identifier: Apache-2.0
// Base-36 text of signed 64-bit integers, both ways: digits 0-9, then A-Z. As messages: base36_messages.h.
//
//   base36Value(1'000'000)           "LFLS"
//   base36Value(-1)                  "-1"
//   base36ValueAsBase10("lfls")      1000000
//   base36ValueAsBase10("1_0")       empty
#pragma once

#include <HavrinFoundation/platform/base/signed_integer.h>
#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {

/// `integer` in radix 36, upper case, with the fewest digits and, below zero, a "-".
[[nodiscard]] HAVRIN_EXPORT std::string base36Value(std::int64_t integer);
template <OtherThanInt64 Type>
std::string base36Value(Type) {
  static_assert(kFitsInt64<Type>,
                "base36Value takes an integer that fits std::int64_t; convert the argument explicitly");
  return {};
}

/// The integer that `text` writes in radix 36: an optional "+" or "-", then digits in either case, leading zeros
/// allowed, and nothing else. Empty when: text is empty or a lone sign; any other character occurs, a blank included;
/// the value leaves 64 bits.
[[nodiscard]] HAVRIN_EXPORT std::optional<std::int64_t> base36ValueAsBase10(std::string_view text) noexcept;
std::optional<std::int64_t> base36ValueAsBase10(std::nullptr_t) = delete;

}  // namespace havrin
