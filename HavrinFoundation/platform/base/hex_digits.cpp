// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/hex_digits.h>

#include <HavrinFoundation/platform/base/wide_instructions.h>

#include <array>

namespace havrin {
inline namespace platform {
namespace {

// "00" to "ff": one load and one store per byte.
constexpr auto kHexPairs = [] {
  std::array<char, 512> pairs{};
  for (std::size_t i = 0; i < 256; ++i) {
    pairs[2 * i] = kLowerHexDigits[i / 16];
    pairs[2 * i + 1] = kLowerHexDigits[i % 16];
  }
  return pairs;
}();

}  // namespace

void writeHexDigits(const std::byte* bytes, std::size_t size, char* out) noexcept {
  if (size >= detail::kWideHexBytes && detail::hasWideInstructions()) {
    return detail::writeHexDigitsWide(bytes, size, out);
  }
  for (std::size_t i = 0; i < size; ++i) {
    const char* pair = &kHexPairs[2 * std::to_integer<std::size_t>(bytes[i])];
    *out++ = pair[0];
    *out++ = pair[1];
  }
}

}  // namespace platform
}  // namespace havrin
