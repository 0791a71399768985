// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/friendly_number.h>

#include <array>
#include <cmath>
#include <cstddef>

namespace havrin {

namespace {

// "00" to "99".
constexpr auto kDecimalPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

// Whether the tenth t (10 to 999) is rounded up when the number lies exactly half way to the next, at (2t + 1)/20 of
// the unit. That fraction is rarely a double: printf sees the nearest one, which lies above or below it, and only where
// it is the fraction itself is there a tie. The same quotient comes up for thousands and for millions, so one bit per t
// settles both. Below 128 a double times 2^52 is whole, and 20 times that stays below 2^64: the comparison is exact.
constexpr std::size_t kTenths = 1000;
constexpr auto kHalvesRoundUp = [] {
  std::array<std::uint64_t, (kTenths + 63) / 64> bits{};
  for (std::uint64_t t = 10; t < kTenths; ++t) {
    const double quotient = static_cast<double>(2 * t + 1) / 20.0;
    const std::uint64_t seen = static_cast<std::uint64_t>(quotient * 0x1p52) * 20;
    const std::uint64_t half = (2 * t + 1) << 52;
    if (seen > half || (seen == half && t % 2 == 1)) bits[t / 64] |= std::uint64_t{1} << (t % 64);
  }
  return bits;
}();

// Both write before `end` and answer where the text begins.
char* writeDecimal(char* end, std::uint64_t number) {
  while (number >= 100) {
    const char* pair = &kDecimalPairs[2 * (number % 100)];
    *--end = pair[1];
    *--end = pair[0];
    number /= 100;
  }
  if (number >= 10) {
    *--end = kDecimalPairs[2 * number + 1];
    *--end = kDecimalPairs[2 * number];
  } else {
    *--end = static_cast<char>('0' + number);
  }
  return end;
}

// The number in units of ten times `tenth`, with one decimal; it is below 100 units.
char* writeTenths(char* end, std::uint32_t number, std::uint32_t tenth) {
  std::uint32_t t = number / tenth;
  const std::uint32_t rest = 2 * (number % tenth);
  if (rest > tenth || (rest == tenth && ((kHalvesRoundUp[t / 64] >> (t % 64)) & 1) != 0)) ++t;
  *--end = static_cast<char>('0' + t % 10);
  *--end = '.';
  return writeDecimal(end, t / 10);
}

// Thousands without a decimal: a double holds every half there is, so a tie is one in integers too.
std::uint32_t wholeThousands(std::uint32_t number) {
  const std::uint32_t whole = number / 1000, rest = number % 1000;
  return whole + (rest > 500 || (rest == 500 && whole % 2 == 1) ? 1 : 0);
}

// Millions without a decimal, rounded from the quotient: beyond 2^53 the number itself is not a double any more.
std::uint64_t wholeMillions(std::uint64_t number) {
  return static_cast<std::uint64_t>(std::llrint(static_cast<double>(number) / 1e6));
}

}  // namespace

std::string friendlyNumber(std::int64_t number) {
  const std::uint64_t magnitude =
      number < 0 ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number);
  std::array<char, 24> buffer;
  char* const end = buffer.data() + buffer.size();
  char* begin = end;
  if (magnitude < 1'000) {
    begin = writeDecimal(end, magnitude);
  } else if (magnitude < 1'000'000) {
    const auto small = static_cast<std::uint32_t>(magnitude);
    *--begin = 'k';
    begin = small < 100'000 ? writeTenths(begin, small, 100) : writeDecimal(begin, wholeThousands(small));
  } else {
    *--begin = 'm';
    begin = magnitude < 100'000'000 ? writeTenths(begin, static_cast<std::uint32_t>(magnitude), 100'000)
                                    : writeDecimal(begin, wholeMillions(magnitude));
  }
  if (number < 0) *--begin = '-';
  return {begin, end};
}

}  // namespace havrin
