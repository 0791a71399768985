// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/base36.h>

#include <array>
#include <cstddef>
#include <limits>

namespace havrin {

namespace {

constexpr std::uint64_t kRadix = 36, kRadix2 = kRadix * kRadix, kRadix4 = kRadix2 * kRadix2;

// Up to 12 digits stay below 2^63: 36^12 = 4,738,381,338,321,616,896. The 13th must be checked.
constexpr std::size_t kUncheckedDigits = 12;

// "00" to "ZZ": one step writes two digits.
constexpr auto kBase36Pairs = [] {
  constexpr std::string_view kDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  std::array<char, 2 * kRadix2> pairs{};
  for (std::size_t i = 0; i < kRadix2; ++i) {
    pairs[2 * i] = kDigits[i / kRadix];
    pairs[2 * i + 1] = kDigits[i % kRadix];
  }
  return pairs;
}();

// The value of each byte as a digit. Other bytes have the high bit, so that the digits of a run can be tested at
// once.
constexpr std::uint8_t kForeign = 0x80;
constexpr auto kDigitValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kForeign);
  for (std::uint8_t i = 0; i < 10; ++i) values['0' + i] = i;
  for (std::uint8_t i = 0; i < 26; ++i) values['A' + i] = values['a' + i] = static_cast<std::uint8_t>(10 + i);
  return values;
}();

unsigned digitOf(char c) { return kDigitValues[static_cast<unsigned char>(c)]; }

char* writePair(char* end, std::uint64_t pair) {
  *--end = kBase36Pairs[2 * pair + 1];
  *--end = kBase36Pairs[2 * pair];
  return end;
}

// The value of a run of at most kUncheckedDigits characters; empty if one of them is not a digit.
std::optional<std::uint64_t> readDigits(std::string_view digits) {
  std::uint64_t value = 0;
  unsigned seen = 0;
  std::size_t i = 0;
  for (; i + 4 <= digits.size(); i += 4) {  // four digits cost the chain one multiplication
    const unsigned a = digitOf(digits[i]), b = digitOf(digits[i + 1]);
    const unsigned c = digitOf(digits[i + 2]), d = digitOf(digits[i + 3]);
    seen |= a | b | c | d;
    value = value * kRadix4 + ((a * 36 + b) * 1296 + (c * 36 + d));
  }
  for (; i < digits.size(); ++i) {
    const unsigned digit = digitOf(digits[i]);
    seen |= digit;
    value = value * kRadix + digit;
  }
  if ((seen & kForeign) != 0) return std::nullopt;
  return value;
}

}  // namespace

std::string base36Value(std::int64_t integer) {
  std::uint64_t rest = integer < 0 ? 0 - static_cast<std::uint64_t>(integer) : static_cast<std::uint64_t>(integer);
  std::array<char, 16> buffer;
  char* const end = buffer.data() + buffer.size();
  char* begin = end;
  for (; rest >= kRadix4; rest /= kRadix4) {
    const auto low = static_cast<std::uint32_t>(rest % kRadix4);
    begin = writePair(writePair(begin, low % kRadix2), low / kRadix2);
  }
  auto head = static_cast<std::uint32_t>(rest);
  if (head >= kRadix2) {
    begin = writePair(begin, head % kRadix2);
    head /= kRadix2;
  }
  begin = writePair(begin, head);
  if (head < kRadix) ++begin;  // without the leading zero
  if (integer < 0) *--begin = '-';
  return {begin, end};
}

std::optional<std::int64_t> base36ValueAsBase10(std::string_view text) noexcept {
  const bool negative = !text.empty() && text.front() == '-';
  if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  if (text.empty()) return std::nullopt;
  while (text.size() > kUncheckedDigits + 1 && text.front() == '0') text.remove_prefix(1);
  if (text.size() > kUncheckedDigits + 1) return std::nullopt;

  const auto leading = readDigits(text.substr(0, kUncheckedDigits));
  if (!leading) return std::nullopt;
  std::uint64_t magnitude = *leading;
  if (text.size() > kUncheckedDigits) {
    const std::uint64_t limit = std::uint64_t{std::numeric_limits<std::int64_t>::max()} + (negative ? 1 : 0);
    const std::uint64_t last = digitOf(text.back());
    if (last == kForeign || magnitude > (limit - last) / kRadix) return std::nullopt;
    magnitude = magnitude * kRadix + last;
  }
  return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
}

}  // namespace havrin
