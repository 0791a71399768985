// SPDX-License-Identifier: Apache-2.0
// Hexadecimal digits: the one table of them, reading one, writing bytes as digits. Internal to the library.
//
//   kUpperHexDigits[0xB]         'B'
//   hexValue('f')                15
//   hexValue('g')                kNoDigit
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <string_view>

namespace havrin {
inline namespace platform {

inline constexpr std::string_view kLowerHexDigits = "0123456789abcdef";
inline constexpr std::string_view kUpperHexDigits = "0123456789ABCDEF";

/// The value of the hexadecimal digit `c` in either case; kNoDigit for any other character.
inline constexpr int kNoDigit = -1;
[[nodiscard]] constexpr int hexValue(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return kNoDigit;
}

/// Writes two lower-case digits for each of `size` bytes to `out`.
HAVRIN_EXPORT void writeHexDigits(const std::byte* bytes, std::size_t size, char* out) noexcept;

}  // namespace platform
}  // namespace havrin
