// SPDX-License-Identifier: Apache-2.0
// Decimal digits, eight at a time. For the project's own sources.
//
//   const std::uint64_t word = loadWord("1234,567");
//   leadingDigits(word)             4
//   valueOfDigits(word, 4)          1234
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace havrin {
inline namespace platform {

/// The eight bytes at `bytes` as a word, the first byte in the lowest bits.
inline std::uint64_t loadWord(const char* bytes) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

/// The number of digits before the first byte that is not one.
inline unsigned leadingDigits(std::uint64_t word) noexcept {
  const std::uint64_t values = word ^ 0x3030303030303030;
  // A byte above 9 has a high bit set, or gets one by adding 6. A carry only affects later bytes.
  const std::uint64_t others = (values | (values + 0x0606060606060606)) & 0xF0F0F0F0F0F0F0F0;
  return static_cast<unsigned>(std::countr_zero(others)) / 8;
}

/// The value of the first `count` digits.
inline std::uint64_t valueOfDigits(std::uint64_t word, unsigned count) noexcept {
  if (count == 0) return 0;
  // The shift adds leading zeros. Then pairs of digits are combined, and the four pairs by two multiplications.
  std::uint64_t digits = (word ^ 0x3030303030303030) << (64 - 8 * count);
  digits = digits * 10 + (digits >> 8);
  constexpr std::uint64_t kPairs = 0x000000FF000000FF;
  return ((digits & kPairs) * 0x000F424000000064 + (digits >> 16 & kPairs) * 0x0000271000000001) >> 32;
}

}  // namespace platform
}  // namespace havrin
