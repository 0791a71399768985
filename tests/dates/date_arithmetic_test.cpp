#include <HavrinFoundation/dates/date_arithmetic.h>

#include <HavrinFoundation/testkit/test_clock.h>
#include <tests/platform/time/pinned_environment.h>

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

namespace havrin {
namespace {

using havrin::testing::PinnedEnvironment;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

Date at(double secondsSince1970) { return Date::fromTimeIntervalSince1970(secondsSince1970); }

TEST(DateArithmetic, KeepsTheFractionOfATimestampAndDropsItWhenReadBack) {
  const struct {
    std::int64_t milliseconds;
    double seconds;
    std::int64_t readBack;
    const char* why;
  } rows[] = {
      {0, 0, 0, "the epoch"},
      {1500, 1.5, 1000, "toward zero"},
      {-1500, -1.5, -1000, "toward zero before 1970"},
      {5000, 5, 5000, "a whole second"},
      {1, 0.001000046730041504, 0, "as near as a double of seconds since 2001 comes"},
      {999, 0.9989999532699585, 0, "not yet a second"},
      {1999, 1.9989999532699585, 1000, "not yet two"},
      {9'007'199'254'740'992, 9007199254740.992, 9'007'199'254'740'000, "2^53"},
      {9'223'372'036'854'775'000, 9223372036854774, 9'223'372'036'854'774'000, "doubles go in steps of two out there"},
      {kMost, 9223372036854776, kMost, "beyond the last product"},
      {kLeast, -9223372036854776, kLeast, "and before the first"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    const Date date = fromMillisecondsSince1970<Date>(row.milliseconds);
    EXPECT_NEAR(date.timeIntervalSince1970(), row.seconds, row.milliseconds == 9'007'199'254'740'992 ? 1e-3 : 0);
    EXPECT_EQ(millisecondsSince1970(date), row.readBack);
  }
}

TEST(DateArithmetic, SaturatesWhatHasNoMilliseconds) {
  const struct {
    double seconds;
    std::int64_t milliseconds;
  } rows[] = {
      {0.99999999, 1000},  // reads 1.0
      {1e16, kMost},
      {-1e16, kLeast},
      {1e300, kMost},
      {-std::numeric_limits<double>::infinity(), kLeast},
      {std::numeric_limits<double>::infinity(), kMost},
      {std::numeric_limits<double>::quiet_NaN(), 0},
  };
  for (const auto& row : rows) EXPECT_EQ(millisecondsSince1970(at(row.seconds)), row.milliseconds) << row.seconds;
}

TEST(DateArithmetic, ComparesMonthAndDayInTheUsersCalendar) {
  const struct {
    const char* zone;
    const char* language;
    double first;
    double second;
    bool same;
    const char* why;
  } rows[] = {
      {"UTC", "C", 1552521600, 1710374400, true, "14 March 2019 and 2024"},
      {"UTC", "C", 1709164800, 1677542400, false, "29 and 28 February"},
      {"UTC", "C", 1709681400, 1709685000, false, "23:30 and 00:30 in GMT"},
      {"America/New_York", "C", 1709681400, 1709685000, true, "and the same evening in New York"},
      {"UTC", "fa_IR", 1710374400, 1552521600, false, "leap years fall apart in the Persian calendar"},
      {"UTC", "en_US@calendar=hebrew", 1710374400, 1679443200 + 17 * 86400, false, "Adar and Nisan"},
      {"UTC", "C", 0, std::numeric_limits<double>::quiet_NaN(), false, "not a number"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    const PinnedEnvironment environment(row.zone, row.language);
    EXPECT_EQ(isSameMonthAndDay(at(row.first), at(row.second)), row.same);
    EXPECT_EQ(isSameMonthAndDay(at(row.second), at(row.first)), row.same);
    TestClock clock;
    clock.setWallSecondsSince1970(row.second);
    EXPECT_EQ(isSameMonthAndDayAsToday(at(row.first)), row.same);
  }
  const Date nothing = at(std::numeric_limits<double>::quiet_NaN());
  EXPECT_FALSE(isSameMonthAndDay(nothing, nothing));
}

TEST(DateArithmetic, FollowsTheZoneFromCallToCall) {
  const PinnedEnvironment environment("America/New_York");
  const Date evening = at(1710037800);  // 9 March 2024, 21:30 in New York
  EXPECT_EQ(dateByAddingDays(evening, 1) - evening, 23 * 3600);
  EXPECT_EQ(numberOfCalendarDays(evening, evening + 4 * 3600), 1);
  PinnedEnvironment::set("TZ", "Asia/Tokyo");
  EXPECT_EQ(dateByAddingDays(evening, 1) - evening, 24 * 3600);
  EXPECT_EQ(numberOfCalendarDays(evening, evening + 4 * 3600), 0);
  PinnedEnvironment::set("TZ", "America/Sao_Paulo");
  EXPECT_EQ(numberOfCalendarDays(at(1541300400), at(1541383200)), 1) << "from a day without a midnight";
  EXPECT_EQ(numberOfCalendarDays(at(1541815200), at(1541300400)), -6);
}

TEST(DateArithmetic, CountsDaysAndMinutes) {
  const PinnedEnvironment environment("UTC");
  EXPECT_EQ(numberOfCalendarDays(at(86340), at(86460)), 1);
  EXPECT_EQ(numberOfCalendarMinutes<Date>(at(86340), at(86460)), 2);
  EXPECT_EQ(numberOfCalendarMinutes<Date>(at(0), at(59)), 0);
  EXPECT_EQ(numberOfCalendarMinutes<Date>(at(61), at(0)), -1);
  EXPECT_EQ(numberOfCalendarDays(at(0), at(-2 * 86400)), -2);
  EXPECT_EQ(dateByAddingDays(at(0.125), 0), at(0.125));
}

TEST(DateArithmetic, AddsTheDaysItCounts) {
  for (const char* zone : {"America/New_York", "America/Sao_Paulo", "Pacific/Apia", "Europe/Dublin", "UTC"}) {
    const PinnedEnvironment environment(zone);
    for (double start = 1.2e9; start < 1.7e9; start += 1e6 / 3) {
      for (const std::int64_t days : {1, 30, -1, -365, 4000}) {
        const Date later = dateByAddingDays(at(start), days);
        const bool overTheSkippedDay = std::string_view(zone) == "Pacific/Apia" &&
                                       numberOfCalendarDays(later, at(1325239200)) == (days > 0 ? 0 : 2);
        ASSERT_TRUE(numberOfCalendarDays(at(start), later) == days || overTheSkippedDay) << zone << ' ' << start;
      }
    }
  }
}

TEST(DateArithmetic, AnswersManyThreads) {
  const PinnedEnvironment environment("America/New_York", "fa_IR");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int day = 0; day < 400; ++day) {
        const Date later = dateByAddingDays(at(1.7e9), day);
        EXPECT_EQ(numberOfCalendarDays(at(1.7e9), later), day);
        EXPECT_TRUE(isSameMonthAndDay(later, later));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace havrin
