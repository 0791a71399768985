// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/dates/date_arithmetic_messages.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/testkit/test_clock.h>
#include <tests/platform/time/pinned_environment.h>

namespace havrin {
namespace {

using havrin::testing::PinnedEnvironment;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

Date at(double secondsSince1970) { return Date::fromTimeIntervalSince1970(secondsSince1970); }
Strong<NSDate> object(double secondsSince1970) { return make<NSDate>(at(secondsSince1970)); }

TEST(DateArithmetic, KeepsMillisecondsAndReadsBackWholeSeconds) {
  for (const auto& [milliseconds, seconds, readBack, why] : Rows<std::int64_t, double, std::int64_t, const char*>{
           {-1500, -1.5, -1000, "toward zero before 1970"},
           {999, 0.9989999532699585, 0, "less than a second, as near as a double of seconds since 2001"},
           {9'007'199'254'740'992, 9007199254740.992, 9'007'199'254'740'000, "2^53"},
           {9'223'372'036'854'775'000, 9223372036854774, 9'223'372'036'854'774'000, "doubles are two seconds apart"},
           {kMost, 9223372036854776, kMost, "the last"},
           {kLeast, -9223372036854776, kLeast, "the first"},
       }) {
    SCOPED_TRACE(why);
    const Date date = fromMillisecondsSince1970<Date>(milliseconds);
    EXPECT_NEAR(date.timeIntervalSince1970(), seconds, milliseconds == 9'007'199'254'740'992 ? 1e-3 : 0);
    EXPECT_EQ(millisecondsSince1970(date), readBack);
    const Strong<NSDate> asObject = fromMillisecondsSince1970<NSDate>(milliseconds);
    EXPECT_EQ(asObject->value(), date);
    EXPECT_EQ(send<"hav_millisecondsSince1970">(asObject), readBack);
  }
}

TEST(DateArithmetic, SaturatesTimesBeyondTheRangeOfMilliseconds) {
  EXPECT_EQ(millisecondsSince1970(at(1e16)), kMost);
  EXPECT_EQ(millisecondsSince1970(at(-1e16)), kLeast);
  EXPECT_EQ(millisecondsSince1970(at(kInfinity)), kMost);
  EXPECT_EQ(millisecondsSince1970(at(kNotANumber)), 0);
  EXPECT_EQ(millisecondsSince1970(at(0.99999999)), 1000) << "the nearest date is a second";
}

TEST(DateArithmetic, ComparesMonthAndDayInTheUsersCalendar) {
  for (const auto& [zone, language, first, second, same, why] :
       Rows<const char*, const char*, double, double, bool, const char*>{
           {"UTC", "C", 1552521600, 1710374400, true, "14 March 2019 and 2024"},
           {"UTC", "C", 1709681400, 1709685000, false, "23:30 and 00:30 in GMT"},
           {"America/New_York", "C", 1709681400, 1709685000, true, "and the same evening in New York"},
           {"UTC", "fa_IR", 1710374400, 1552521600, false, "leap years fall apart in the Persian calendar"},
           {"UTC", "C", 0, kNotANumber, false, "NaN"},
       }) {
    SCOPED_TRACE(why);
    const PinnedEnvironment environment(zone, language);
    EXPECT_EQ(isSameMonthAndDay(at(first), at(second)), same);
    EXPECT_EQ(send<"hav_isSameMonthAndDayAsDate:">(object(first), object(second)), same);
    TestClock clock;
    clock.setWallSecondsSince1970(second);
    EXPECT_EQ(isSameMonthAndDayAsToday(at(first)), same);
    EXPECT_EQ(send<"hav_isSameMonthAndDayAsToday">(object(first)), same);
  }
  const Date nothing = at(kNotANumber);
  EXPECT_FALSE(isSameMonthAndDay(nothing, nothing));
}

TEST(DateArithmetic, CountsDaysAndMinutes) {
  const PinnedEnvironment environment("UTC");
  for (const auto& [first, second, days, minutes, why] : Rows<double, double, std::int64_t, std::int64_t, const char*>{
           {86340, 86460, 1, 2, "over midnight"},
           {0, 59, 0, 0, "less than a minute"},
           {0, 61, 0, 1, "more than one"},
           {61, 0, 0, -1, "backwards"},
           {0, 0, 0, 0, "the same instant"},
           {86400, -86400, -2, -2880, "two days earlier"},
       }) {
    SCOPED_TRACE(why);
    const Date from = at(first);
    const Date to = at(second);
    EXPECT_EQ(numberOfCalendarDays(from, to), days);
    EXPECT_EQ(send<"hav_numberOfCalendarDaysToDate:">(object(first), object(second)), days);
    EXPECT_EQ(numberOfCalendarMinutes<Date>(from, to), minutes);
    EXPECT_EQ(send<"hav_numberOfCalendarMinutesBetweenDate:andDate:">(classOf<NSDate>(), object(first), object(second)),
              minutes);
    EXPECT_EQ(dateByAddingDays(from, days), from + static_cast<double>(days) * 86400);
    EXPECT_EQ(send<"hav_dateByAddingDays:">(object(first), days)->value(), dateByAddingDays(from, days));
    EXPECT_EQ(send<"hav_isAfterDate:">(object(first), object(second)), first > second);
    EXPECT_EQ(send<"hav_isBeforeDate:">(object(first), object(second)), first < second);
  }
}

/// Compares the other way round.
struct Reversed : Object<Reversed, NSDate> {
  NSComparisonResult compare(const NSDate* other) const override {
    return static_cast<NSComparisonResult>(-static_cast<std::int64_t>(NSDate::compare(other)));
  }
};

/// Counts its initialisations, and is a second late.
struct Late : Object<Late, NSDate> {
  int initialised = 0;
  Strong<NSDate> initWithTimeIntervalSince1970(double seconds) override {
    ++initialised;
    return NSDate::initWithTimeIntervalSince1970(seconds + 1);
  }
};

/// Its init returns a plain date.
struct Replaced : Object<Replaced, NSDate> {
  Strong<NSDate> initWithTimeIntervalSince1970(double seconds) override { return object(seconds); }
};

TEST(DateArithmetic, ComparesByTheOverrideOfTheReceiver) {
  const Strong<NSDate> later = fromMillisecondsSince1970<Reversed>(5000);
  EXPECT_TRUE(isBefore(*later, at(0)) && !isAfter(*later, at(0)));
  EXPECT_TRUE(send<"hav_isBeforeDate:">(later, object(0)) && !send<"hav_isAfterDate:">(later, object(0)));
}

TEST(DateArithmetic, MakesDatesOfTheReceivingClass) {
  const Strong<Late> typed = fromMillisecondsSince1970<Late>(1500);
  EXPECT_EQ(typed->initialised, 1);
  EXPECT_EQ(typed->timeIntervalSince1970(), 2.5);
  const Strong<Late> sent = send<"initWithMillisecondsSince1970:">(alloc<Late>(), 1500);
  EXPECT_EQ(sent->initialised, 1);
  EXPECT_FALSE(fromMillisecondsSince1970<Replaced>(1500)) << "an override gave another class";
  EXPECT_TRUE(sent->isEqual(typed));
  EXPECT_TRUE(sent->isMemberOfClass(classOf<Late>()));
  EXPECT_TRUE(send<"hav_dateByAddingDays:">(sent, 1)->isMemberOfClass(classOf<NSDate>()));
}

TEST(DateArithmetic, RefusesNullDates) {
  const Strong<NSDate> date = object(0);
  EXPECT_THROW((void)send<"hav_isSameMonthAndDayAsDate:">(date, nullptr), NSException);
  EXPECT_THROW((void)send<"hav_isAfterDate:">(date, nullptr), NSException);
  EXPECT_THROW((void)send<"hav_isBeforeDate:">(date, nullptr), NSException);
  EXPECT_THROW((void)send<"hav_numberOfCalendarDaysToDate:">(date, nullptr), NSException);
  const auto cls = classOf<NSDate>();
  EXPECT_THROW((void)send<"hav_numberOfCalendarMinutesBetweenDate:andDate:">(cls, date, nullptr), NSException);
}

}  // namespace
}  // namespace havrin
