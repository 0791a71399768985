// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/uuid.h>

#include <HavrinFoundation/platform/base/hex_digits.h>

namespace havrin {
inline namespace platform {
namespace {

constexpr std::size_t kTextLength = 36;

constexpr bool isDash(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

}  // namespace

std::optional<UUID> UUID::fromString(std::string_view text) {
  if (text.size() != kTextLength) return std::nullopt;
  Bytes bytes{};
  std::size_t digits = 0;
  for (std::size_t i = 0; i < kTextLength; ++i) {
    if (isDash(i)) {
      if (text[i] != '-') return std::nullopt;
      continue;
    }
    const int value = hexValue(text[i]);
    if (value == kNoDigit) return std::nullopt;
    bytes[digits / 2] = static_cast<std::uint8_t>(bytes[digits / 2] << 4 | value);
    ++digits;
  }
  return UUID(bytes);
}

std::string UUID::uuidString() const {
  std::string text(kTextLength, '-');
  std::size_t digits = 0;
  for (std::size_t i = 0; i < kTextLength; ++i) {
    if (isDash(i)) continue;
    text[i] = kUpperHexDigits[digits % 2 == 0 ? bytes_[digits / 2] >> 4 : bytes_[digits / 2] & 0xF];
    ++digits;
  }
  return text;
}

}  // namespace platform
}  // namespace havrin
