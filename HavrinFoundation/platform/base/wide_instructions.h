// SPDX-License-Identifier: Apache-2.0
// Loops over bytes that use the processor's wide instructions (AVX2) where it has them. Internal to the library.
//
//   if (size >= kWideHexBytes && hasWideInstructions()) return writeHexDigitsWide(bytes, size, out);
//   ... the plain loop
//
// The library is built for any processor of its kind: each loop here has a plain one beside its caller, with the same
// answers, and may be called only where hasWideInstructions() is true.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace havrin::detail {

enum class WideInstructions : signed char { unknown, absent, present };

/// What was found at first use. A test writes `absent` to run the plain loops.
HAVRIN_EXPORT extern constinit std::atomic<WideInstructions> wideInstructions;
HAVRIN_EXPORT bool findWideInstructions() noexcept;

[[nodiscard]] inline bool hasWideInstructions() noexcept {
  const WideInstructions found = wideInstructions.load(std::memory_order_relaxed);
  if (found != WideInstructions::unknown) [[likely]]
    return found == WideInstructions::present;
  return findWideInstructions();
}

/// The fewest bytes that writeHexDigitsWide takes.
inline constexpr std::size_t kWideHexBytes = 16;
/// Writes two lower-case hexadecimal digits for each byte.
void writeHexDigitsWide(const std::byte* bytes, std::size_t size, char* out) noexcept;

/// A set of bytes below 80 (hexadecimal): bit h of row l is byte 16 h + l.
using AsciiRows = std::array<std::uint8_t, 16>;

/// The fewest bytes that skipAsciiWide takes.
inline constexpr std::size_t kWideAsciiBytes = 16;
/// The position of the first byte that is above 7F, or in the set (where `others`: not in it); `size` where there is none.
[[nodiscard]] std::size_t skipAsciiWide(const unsigned char* text, std::size_t size, const AsciiRows& set,
                                        bool others) noexcept;
/// The same for UTF-16, but the result may be earlier: the beginning of the 32 units with such a one, or of the last
/// fewer than 32.
[[nodiscard]] std::size_t skipAsciiWide(const char16_t* text, std::size_t size, const AsciiRows& set,
                                        bool others) noexcept;

}  // namespace havrin::detail
