// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/colours/hex_codes.h>

#include <HavrinFoundation/platform/base/hex_digits.h>
#include <HavrinFoundation/platform/base/random.h>
#include <HavrinFoundation/platform/unicode/unicode.h>
#include <HavrinFoundation/text/character_sets.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace havrin {

namespace {

constexpr std::size_t kFewestCharacters = 6;
constexpr std::size_t kMostCharacters = 11;

// "0x" or "0X" as the first two characters: neither letter may carry a mark.
bool beginsWithPrefix(std::string_view code) noexcept {
  if (code.size() < 2 || code[0] != '0' || (code[1] != 'x' && code[1] != 'X')) return false;
  if (code.size() == 2 || static_cast<unsigned char>(code[2]) < 0x80) return true;
  return firstCharacterLength(code.substr(1)) == 1;
}

// What each byte of a code means: a digit's value, or kNotADigit. Laid out once from the hexadecimal set.
constexpr std::uint8_t kNotADigit = 0xFF;
using DigitTable = std::array<std::uint8_t, 256>;

DigitTable digitTable() {
  const CharacterSet& digits = detail::hexadecimalSet();
  DigitTable table;
  table.fill(kNotADigit);
  for (std::uint8_t unit = 0; unit < 0x80; ++unit) {  // no byte of another character is a digit
    if (!digits.contains(unit)) continue;
    table[unit] = static_cast<std::uint8_t>(unit <= '9' ? unit - '0' : (unit | 0x20) - 'a' + 10);
  }
  return table;
}

const DigitTable& digitValues() {
  static const DigitTable kTable = digitTable();
  return kTable;
}

// byte / 255.0 for every byte.
constexpr auto kChannels = [] {
  std::array<double, 256> channels{};
  for (std::size_t byte = 0; byte < channels.size(); ++byte) channels[byte] = static_cast<double>(byte) / 255.0;
  return channels;
}();

// A component as the integer that is written; empty when it has none.
std::optional<std::int64_t> channel(double component) noexcept {
  constexpr double kBeyond = 9223372036854775808.0;
  const double scaled = component * 255.0;
  if (!(scaled >= -kBeyond && scaled < kBeyond)) return std::nullopt;  // not-a-number included
  return static_cast<std::int64_t>(scaled);
}

// "#" and the channels, each two digits at least: the low 32 bits of a channel.
class Writer {
 public:
  void append(std::int64_t channel) {
    if (channel >= 0 && channel <= 255) {
      const auto byte = static_cast<std::size_t>(channel);
      *end_++ = kUpperHexDigits[byte >> 4];
      *end_++ = kUpperHexDigits[byte & 15];
    } else {
      end_ += std::snprintf(end_, 9, "%02X", static_cast<unsigned>(channel));
    }
  }
  [[nodiscard]] std::string text() const { return std::string(text_, static_cast<std::size_t>(end_ - text_)); }

 private:
  char text_[1 + 4 * 8 + 1] = {'#'};
  char* end_ = text_ + 1;
};

}  // namespace

std::optional<detail::HexCode> detail::sanitizedHexCode(std::string_view code) {
  const std::size_t characters = characterCount(code);
  if (characters < kFewestCharacters || characters > kMostCharacters) return std::nullopt;
  if (beginsWithPrefix(code)) code.remove_prefix(2);
  const DigitTable& values = digitValues();
  HexCode result{};
  for (const char unit : code) {
    // Every unit is written where the next digit belongs, and stays there if it is one: no branch to mispredict.
    result.digits[std::min(result.count, result.digits.size() - 1)] = unit;
    result.count += values[static_cast<unsigned char>(unit)] != kNotADigit;
  }
  if (result.count != 6 && result.count != 8) return std::nullopt;
  return result;
}

std::optional<RGBA> detail::readHexCode(std::string_view code) {
  const auto clean = detail::sanitizedHexCode(code);
  if (!clean) return std::nullopt;
  const DigitTable& values = digitValues();
  const auto value = [&](std::size_t index) { return values[static_cast<unsigned char>(clean->digits[index])]; };
  const auto channelAt = [&](std::size_t index) { return kChannels[value(2 * index) * 16U + value(2 * index + 1)]; };
  return RGBA{channelAt(0), channelAt(1), channelAt(2), clean->count == 8 ? channelAt(3) : 1.0};
}

std::optional<std::string> hexString(const UIColor& color) {
  const CGColor& source = color.cgColor();
  const CGColorSpace* space = source.colorSpace();
  const std::span<const double> components = source.components();
  if (!space || components.empty()) return std::nullopt;
  const bool gray = space->model == CGColorSpaceModel::monochrome;
  if (!gray && (space->model != CGColorSpaceModel::rgb || components.size() < 3)) return std::nullopt;

  Writer code;
  for (std::size_t i = 0; i < 3; ++i) {
    const auto value = channel(components[gray ? 0 : i]);
    if (!value) return std::nullopt;
    code.append(*value);
  }
  const double alpha = source.alpha();
  if (alpha >= 1.0) return code.text();
  const auto value = channel(alpha);
  if (!value) return std::nullopt;
  code.append(*value);
  return code.text();
}

Strong<UIColor> colorWithHexString(std::optional<std::string_view> code) { return fromHexString<UIColor>(code); }

Strong<UIColor> randomColor() {
  char code[7];
  std::snprintf(code, sizeof code, "%06lx", static_cast<unsigned long>(secureRandomBits() & 0xFF'FFFF));
  return fromHexString<UIColor>(std::string_view(code, 6));
}

}  // namespace havrin
