// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/time/calendar.h>
#include <tests/platform/time/pinned_environment.h>

namespace havrin {
namespace {

using havrin::testing::PinnedEnvironment;

Date at(double secondsSince1970) { return Date::fromTimeIntervalSince1970(secondsSince1970); }
double secondsOf(Date date) { return date.timeIntervalSince1970(); }
Calendar in(std::string_view zone) { return {CalendarIdentifier::gregorian, TimeZone::named(zone).value()}; }

TEST(Calendar, StartsADayAtItsFirstMoment) {
  for (const auto& [zone, noon, start, why] : Rows<const char*, double, double, const char*>{
           {"America/New_York", 1710082800, 1710046800, "23 hours"},
           {"America/Sao_Paulo", 1541340000, 1541300400, "no midnight: 01:00"},
           {"America/Sao_Paulo", 1518922799, 1518832800, "25 hours: the second 23:59:59"},
           {"Asia/Beirut", 1648371600, 1648332000, "no midnight: 01:00"},
           {"America/Toronto", -1601712000, -1601753400, "the clock jumped from 23:30 to 00:30"},
           {"Atlantic/Azores", 1698541200, 1698537600, "the second midnight belongs to the same day"},
           {"America/Havana", 1699203600, 1699156800, "two midnights"},
           {"America/St_Johns", 1162098000, 1162089000, "00:01 went back to 23:01: the midnight before counts"},
           {"Pacific/Apia", 1325282400, 1325239200, "the day after the one that was skipped"},
           {"GMT", -0.001, -86400, "a fraction before 1970"},
       })
    EXPECT_EQ(secondsOf(in(zone).startOfDay(at(noon))), start) << why;
}

TEST(Calendar, AddsDaysKeepingTheWallClock) {
  for (const auto& [zone, start, days, result, why] : Rows<const char*, double, std::int64_t, double, const char*>{
           {"America/New_York", 1709969400, 1, 1710055800, "02:30 is skipped: 03:30"},
           {"America/New_York", 1709969400, 2, 1710138600, "beyond the gap: 02:30"},
           {"America/New_York", 1730525400, 1, 1730611800, "01:30 EDT to the first 01:30"},
           {"America/New_York", 1730701800, -1, 1730615400, "01:30 EST to the second 01:30"},
           {"America/New_York", 1730615400, 1, 1730701800, "from the second 01:30 onwards"},
           {"America/Sao_Paulo", 1541215800, 1, 1541302200, "00:30 is skipped: 01:30"},
           {"America/New_York", 1e12, 1, 1e12 + 86400, "beyond every table of changes"},
           {"Pacific/Apia", 1325188800, 1, 1325275200, "29 December to 31 December: there was no 30th"},
           {"Pacific/Apia", 1325188800, 2, 1325275200, "the 31st is two days after the 29th"},
           {"Pacific/Apia", 1325275200, -1, 1325188800, "backwards over the missing day: never standing still"},
           {"Australia/Lord_Howe", 1728056700, 1, 1728143100, "half an hour: 02:15 is skipped, 02:45"},
           {"Europe/Dublin", 1711760400, 1, 1711846800, "01:00 GMT is skipped: 02:00 IST"},
           {"GMT", -12219379200, 1, -12219292800, "4 October 1582 to 15 October"},
           {"GMT", -12219292800, -1, -12219379200, "and back"},
           {"GMT", 1675123200.25, 1, 1675209600.25, "into the next month, the fraction kept"},
       })
    EXPECT_EQ(secondsOf(in(zone).dateByAddingDays(at(start), days)), result) << why;
}

TEST(Calendar, ClampsWhatNoCalendarReaches) {
  const Calendar calendar = in("America/New_York");
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  for (const double start : {0.0, 1.7e9, -1e12, 1.8e14, -1.8e14, 1e300, -1e300, kInfinity, -kInfinity}) {
    SCOPED_TRACE(start);
    for (const std::int64_t days : {kMost, kMost - 1, std::int64_t{1} << 62, std::int64_t{5'000'000'000}}) {
      EXPECT_EQ(calendar.dateByAddingDays(at(start), days), kLastCalendarDate) << days;
      EXPECT_EQ(calendar.dateByAddingDays(at(start), -days), kFirstCalendarDate) << days;
    }
    EXPECT_EQ(calendar.dateByAddingDays(at(start), kLeast), kFirstCalendarDate);
    EXPECT_EQ(calendar.dateByAddingDays(at(start), 0), at(start)) << "no step, the very date";
    EXPECT_TRUE(calendar.monthAndDay(at(start)).has_value());
  }
  EXPECT_EQ(calendar.days(at(-kInfinity), at(kInfinity)), 4'261'412'864);
  EXPECT_EQ(calendar.minutes(at(1e300), at(-1e300)), -6'136'434'524'160);
  const Date nothing = at(kNotANumber);
  EXPECT_EQ(calendar.days(nothing, Date()), 0);
  EXPECT_EQ(calendar.minutes(Date(), nothing), 0);
  EXPECT_FALSE(calendar.monthAndDay(nothing).has_value());
  EXPECT_EQ(calendar.components(nothing), DateComponents());
  EXPECT_NE(calendar.dateByAddingDays(nothing, 1), calendar.dateByAddingDays(nothing, 1));
  EXPECT_NE(calendar.startOfDay(nothing), calendar.startOfDay(nothing));
}

TEST(Calendar, CountsDaysByTheirNumbersAndMinutesByTheirSeconds) {
  for (const auto& [zone, from, to, days, minutes, why] :
       Rows<const char*, double, double, std::int64_t, std::int64_t, const char*>{
           {"America/New_York", 1710046800, 1710129600, 1, 1380, "23 hours"},
           {"America/Sao_Paulo", 1541383200, 1541300400, -1, -1380, "and back"},
           {"Africa/Cairo", 1682629200, 1682712000, 1, 1380, "no midnight"},
           {"Pacific/Apia", 1325188800, 1325275200, 2, 1440, "a day skipped"},
           {"GMT", -12219379200, -12219292800, 1, 1440, "ten dates skipped, no day"},
           {"GMT", 86399, 86401, 1, 0, "over midnight"},
           {"GMT", 60.0005, 0, 0, -1, "a minute and a little, backwards"},
           {"GMT", 0, -59, -1, 0, "not yet a minute, backwards"},
           {"GMT", 0, 59.9995, 0, 0, "half a millisecond short"},
           {"GMT", -1e-5, 59.99998, 1, 0, "20 microseconds short, over midnight"},
           {"GMT", 1073741800.001, 1073741860.001, 0, 1,
            "fractions are held differently on either side of 2^30 seconds"},
           {"GMT", 1073741860.001, 1073741800.001, 0, -1, "the same backwards"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(in(zone).days(at(from), at(to)), days);
    EXPECT_EQ(in(zone).minutes(at(from), at(to)), minutes);
  }
}

TEST(Calendar, KnowsTheMonthsOfEachSystem) {
  for (const auto& [locale, expected] : Rows<const char*, MonthAndDay>{
           {"en_US", {3, 14}},
           {"th_TH", {3, 14}},
           {"fa_IR", {12, 24}},
           {"ar_SA", {9, 4}},
           {"en_US@calendar=hebrew", {7, 4}},
           {"en-US-u-ca-japanese", {3, 14}},
       }) {
    SCOPED_TRACE(locale);
    const PinnedEnvironment environment("UTC", locale);
    EXPECT_EQ(Calendar::current().monthAndDay(at(1710374400)), expected);
  }
}

TEST(Calendar, ShowsEraYearAndClock) {
  const DateComponents winter = in("America/New_York").components(at(1704153599.75));
  EXPECT_EQ(winter, (DateComponents{1, 2024, 1, 1, 18, 59, 59, 2}));
  EXPECT_EQ(in("GMT").components(at(-62198928000)), (DateComponents{0, 2, 1, 1, 0, 0, 0, 4})) << "2 BC, Julian";
  EXPECT_EQ(in("GMT").components(at(-14825894400)), (DateComponents{1, 1500, 2, 29, 0, 0, 0, 7}))
      << "a Julian leap day";
  const Calendar buddhist(CalendarIdentifier::buddhist, TimeZone::gmt());
  EXPECT_EQ(buddhist.components(at(0)), (DateComponents{0, 2513, 1, 1, 0, 0, 0, 5}));
}

}  // namespace
}  // namespace havrin
