// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/text/base36.h>
#include <HavrinFoundation/text/base36_messages.h>

#include <cctype>
#include <charconv>

namespace {

using namespace std::string_view_literals;
using namespace havrin;

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

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

// The same for writing, in upper case.
std::string writtenByToChars(std::int64_t integer) {
  char text[16];
  char* const end = std::to_chars(text, text + sizeof text, integer, 36).ptr;
  for (char* digit = text; digit != end; ++digit) *digit = static_cast<char>(std::toupper(*digit));
  return {text, end};
}

TEST(Base36, ReadsTheWholeTextOrNothing) {
  for (const auto& [text, integer, why] : Rows<std::string_view, std::optional<std::int64_t>, const char*>{
           {"+Z", 35, "a plus"},
           {"-00000000000000000000000000000000Z", -35, "more zeros than an integer has digits"},
           {"0001Y2P0IJ32E8E7", kLargest, "zeros before the largest"},
           {"1Y2P0IJ32E8E8", {}, "one more than the largest"},
           {"-1Y2P0IJ32E8E8", kSmallest, "the smallest"},
           {"ZZZZZZZZZZZZ", 4'738'381'338'321'616'895, "the most in twelve digits"},
           {"ZZZZZZZZZZZZZ", {}, "the most in thirteen"},
           {"", {}, "empty"},
           {"+-1", {}, "two signs"},
           {"1\0"sv, {}, "U+0000"},
           {"1Y2P0IJ32E8E_", {}, "no digit in the thirteenth place"},
           {"00000000000000000_", {}, "no digit behind zeros"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(base36ValueAsBase10(text), integer);
    EXPECT_EQ(send<"base36ValueAsBase10">(makeString(text)), integer.value_or(0));
  }
  EXPECT_EQ(base36ValueAsBase10(*makeString(u"1\xD83D")), 0) << "a lone surrogate";
}

template <class Base>
struct Always36 : Object<Always36<Base>, Base> {
  std::int64_t integerValue() const override { return 36; }
};

TEST(Base36, WritesTheIntegerValueOfNumbersAndStrings) {
  for (const auto& [number, string, text, why] : Rows<Strong<NSNumber>, Strong<NSString>, const char*, const char*>{
           {makeNumber(35.9), makeString("  35abc"), "Z", "truncated; read up to the first other character"},
           {makeNumber(~std::uint64_t{0}), makeString("-1"), "-1", "an unsigned number keeps its bits"},
           {makeNumber(-1e300), makeString("-99999999999999999999"), "-1Y2P0IJ32E8E8", "beyond 64 bits"},
           {make<Always36<NSNumber>>(), make<Always36<NSString>>(), "10", "an override"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(utf8(*send<"base36Value">(number)), text);
    EXPECT_EQ(utf8(*send<"base36Value">(string)), text);
  }
  EXPECT_EQ(send<"base36Value">(Strong<NSString>()), nullptr);
}

TEST(Base36, ReadsEveryByteInEveryPlaceAsFromCharsDoes) {
  for (std::size_t size = 1; size <= 13; ++size) {
    for (std::size_t at = 0; at < 256 * size; ++at) {
      std::string text(size, '0');
      text[at % size] = static_cast<char>(at / size);
      ASSERT_EQ(base36ValueAsBase10(text), readByFromChars(text)) << at;
    }
  }
}

TEST(Base36, WritesAsToCharsDoesAndReadsItBack) {
  const auto expectBothWays = [](std::int64_t integer) {
    const std::string text = writtenByToChars(integer);
    ASSERT_EQ(base36Value(integer), text);
    ASSERT_EQ(base36ValueAsBase10(text), integer);
  };
  for (const std::int64_t integer : {kSmallest, std::int64_t{0}, kLargest}) expectBothWays(integer);
  for (std::int64_t power = 1; power < kLargest / 36; power *= 36) {
    for (std::int64_t integer = power - 2; integer <= power + 2; ++integer) {
      expectBothWays(integer);
      expectBothWays(-integer);
    }
  }
  auto generator = seededGenerator();
  for (int i = 0; i < 300'000; ++i) {
    const auto integer = static_cast<std::int64_t>(generator() >> (generator() % 64));
    expectBothWays(integer);
    expectBothWays(-integer);
  }
}

}  // namespace
