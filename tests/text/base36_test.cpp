// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/text/base36.h>
#include <HavrinFoundation/text/base36_messages.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <iterator>

namespace {

using namespace std::string_view_literals;
using namespace havrin;

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

std::string upperCaseToChars(std::int64_t integer) {
  char text[24];
  const auto end = std::to_chars(std::begin(text), std::end(text), integer, 36).ptr;
  std::transform(text, end, text,
                 [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
  return {text, end};
}

// The rule in the words of the standard library: from_chars takes everything, and no sign but "-" of its own.
std::optional<std::int64_t> readByFromChars(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  std::int64_t value;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 36);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

TEST(Base36, WritesTheFewestUpperCaseDigits) {
  const struct {
    std::int64_t integer;
    const char* text;
  } rows[] = {
      {0, "0"},
      {-1, "-1"},
      {1295, "ZZ"},
      {1296, "100"},
      {1'000'000, "LFLS"},
      {kLargest, "1Y2P0IJ32E8E7"},
      {kSmallest, "-1Y2P0IJ32E8E8"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.integer);
    EXPECT_EQ(base36Value(row.integer), row.text);
    EXPECT_EQ(base36ValueAsBase10(row.text), row.integer);
    const auto number = makeNumber(row.integer);
    const auto decimal = makeString(std::to_string(row.integer));
    EXPECT_EQ(utf8(*send<"base36Value">(number)), row.text);
    EXPECT_EQ(utf8(*send<"base36Value">(decimal)), row.text);
  }
}

TEST(Base36, ReadsTheWholeTextOrNothing) {
  const struct {
    std::string_view text;
    std::optional<std::int64_t> integer;
    const char* why;
  } rows[] = {
      {"+Z", 35, "a plus"},
      {"-Z", -35, "a minus"},
      {"000Z", 35, "leading zeros"},
      {"00000000000000000000000000000000Z", 35, "more zeros than an integer has digits"},
      {"0001Y2P0IJ32E8E7", kLargest, "zeros before the largest"},
      {"1Y2P0IJ32E8E8", {}, "one more than the largest"},
      {"-1Y2P0IJ32E8E8", kSmallest, "the smallest"},
      {"ZZZZZZZZZZZZ", 4'738'381'338'321'616'895, "twelve digits always fit"},
      {"ZZZZZZZZZZZZZ", {}, "thirteen need not"},
      {"", {}, "empty"},
      {"+-1", {}, "two signs"},
      {"1\0"sv, {}, "U+0000"},
      {"1Y2P0IJ32E8E_", {}, "no digit in the thirteenth place"},
      {"00000000000000000_", {}, "no digit behind zeros"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(base36ValueAsBase10(row.text), row.integer);
    const auto string = makeString(row.text);
    EXPECT_EQ(base36ValueAsBase10(*string), row.integer.value_or(0));
    EXPECT_EQ(send<"base36ValueAsBase10">(string), row.integer.value_or(0));
  }
  EXPECT_EQ(base36ValueAsBase10(*makeString(u"1\xD83D")), 0) << "a lone surrogate";
}

// Every integer of theirs is 36.
class Number36 : public Object<Number36, NSNumber> {
 public:
  std::int64_t integerValue() const override { return 36; }
};
class String36 : public Object<String36, NSString> {
 public:
  std::int64_t integerValue() const override { return 36; }
};

TEST(Base36, NumbersAndStringsAreWrittenFromTheirIntegerValue) {
  const struct {
    Strong<NSNumber> number;
    Strong<NSString> string;
    const char *text, *why;
  } rows[] = {
      {makeNumber(35.9), makeString("  35abc"), "Z",
       "a fraction is cut off, reading ends at the first other character"},
      {makeNumber(~std::uint64_t{0}), makeString("-1"), "-1", "an unsigned number keeps its bits"},
      {makeNumber(0), makeString("z"), "0", "no decimal number"},
      {makeNumber(1e300), makeString("9223372036854775808"), "1Y2P0IJ32E8E7", "beyond 64 bits"},
      {makeNumber(-1e300), makeString("-99999999999999999999"), "-1Y2P0IJ32E8E8", "beyond 64 bits"},
      {make<Number36>(), make<String36>(), "10", "an override"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(base36Value(*row.number), row.text);
    EXPECT_EQ(base36Value(*row.string), row.text);
    EXPECT_EQ(utf8(*send<"base36Value">(row.number)), row.text);
    EXPECT_EQ(utf8(*send<"base36Value">(row.string)), row.text);
  }
  EXPECT_EQ(send<"base36Value">(Strong<NSString>()), nullptr);
}

TEST(Base36, EveryByteIsADigitOrNone) {
  for (int byte = 0; byte < 256; ++byte) {
    for (std::size_t size = 1; size <= 13; ++size) {
      for (std::size_t at = 0; at < size; ++at) {
        std::string text(size, '0');
        text[at] = static_cast<char>(byte);
        ASSERT_EQ(base36ValueAsBase10(text), readByFromChars(text))
            << "byte " << byte << " at " << at << " of " << size;
      }
    }
  }
}

TEST(Base36, WhatIsWrittenReadsBack) {
  const auto expectBothWays = [](std::int64_t integer) {
    const std::string text = base36Value(integer);
    ASSERT_EQ(text, upperCaseToChars(integer));
    ASSERT_EQ(base36ValueAsBase10(text), integer);
  };
  for (std::int64_t power = 1; power < kLargest / 36; power *= 36) {
    for (std::int64_t integer = power - 2; integer <= power + 2; ++integer) {
      expectBothWays(integer);
      expectBothWays(-integer);
    }
  }
  expectBothWays(kLargest);
  expectBothWays(kSmallest);
  auto generator = seededGenerator();
  for (int i = 0; i < 300'000; ++i) {
    const auto integer = static_cast<std::int64_t>(generator() >> (generator() % 64));
    expectBothWays(integer);
    expectBothWays(-integer);
  }
}

template <class T>
concept Readable = requires(T text) {
  base36ValueAsBase10(text);
};
static_assert(Readable<const char*> && Readable<std::string> && !Readable<std::nullptr_t>);

}  // namespace
