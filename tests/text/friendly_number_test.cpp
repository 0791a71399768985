// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/text/friendly_number.h>
#include <HavrinFoundation/text/friendly_number_messages.h>

namespace {

using havrin::friendlyNumber;
using havrin::NSString;

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

// The text as printf writes it.
std::string printed(std::int64_t number) {
  const auto magnitude = number < 0 ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number);
  char text[40];
  if (magnitude <= 999) {
    std::snprintf(text, sizeof text, "%lu", magnitude);
  } else {
    const bool thousands = magnitude <= 999'999;
    const double quotient = static_cast<double>(magnitude) / (thousands ? 1000.0 : 1e6);
    std::snprintf(text, sizeof text, quotient < 100.0 ? "%.1f%s" : "%.0f%s", quotient, thousands ? "k" : "m");
  }
  return (number < 0 ? "-" : "") + std::string(text);
}

TEST(FriendlyNumber, ShowsOneDecimalBelowAHundredOfTheUnit) {
  for (const auto& [number, text, why] : Rows<std::int64_t, const char*, const char*>{
           {1'250, "1.2k", "an exact tie, to even"},
           {99'950, "100.0k", "the decimal is decided before rounding"},
           {999'999, "1000k", "the unit is decided before rounding"},
           {5'000'000'000, "5000m", "no larger unit"},
           {9'008'102'945'499'999, "9008102946m", "the number is no double, but its quotient decides"},
           {kSmallest, "-9223372036855m", "the smallest, from its magnitude"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(friendlyNumber(number), text);
    EXPECT_EQ(utf8(*havrin::send<"friendlyStringWithNumber:">(havrin::classOf<NSString>(), number)), text);
    EXPECT_EQ(printed(number), text);
  }
}

TEST(FriendlyNumber, WritesWhatPrintfWrites) {
  const auto expectPrinted = [](std::int64_t number) { ASSERT_EQ(friendlyNumber(number), printed(number)) << number; };
  for (std::int64_t number = 0; number <= 1'200'000; ++number) expectPrinted(number);
  for (std::int64_t tenth = 10; tenth < 1000; ++tenth) {  // every half way number of the millions
    for (const std::int64_t beside : {49'999, 50'000, 50'001}) expectPrinted(tenth * 100'000 + beside);
  }
  auto generator = seededGenerator();
  for (int i = 0; i < 1'000'000; ++i) {
    // All magnitudes alike; half of them within one of a half of a tenth or of a whole of their unit.
    auto number = static_cast<std::int64_t>(generator() >> (generator() % 64));
    if (generator() % 2 == 0) {
      const std::int64_t half = std::int64_t{50} << (generator() % 2 * 13);
      number = number / half * half + static_cast<std::int64_t>(generator() % 3) - 1;
    }
    expectPrinted(number);
    expectPrinted(-number);
  }
}

}  // namespace
