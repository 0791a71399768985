// SPDX-License-Identifier: Apache-2.0
// The user's calendar: days, months and the wall clock.
//
//   const Calendar calendar(CalendarIdentifier::gregorian, *TimeZone::named("America/New_York"));
//   calendar.monthAndDay(date)                                  {3, 9} on the evening of 9 March 2024
//   calendar.dateByAddingDays(date, 1)                          the same time of the next day
//   calendar.days(date, calendar.dateByAddingDays(date, 1))     1, though that day had 23 hours
//   Calendar::current().startOfDay(date)                        midnight, or the first moment of a day that has none
//
// A day is a day in every calendar, and so is a minute: only months, years and eras depend on the calendar system.
// Calendars reach from `kFirstCalendarDate` to `kLastCalendarDate`, about 5.8 million years each way; an instant beyond
// counts as the nearest of the two. Gregorian days before 15 October 1582 are Julian.
//
// Left out: making dates from components, adding months and years, weeks, leap-month marks, the first day of the week.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/time/date.h>
#include <HavrinFoundation/platform/time/locale.h>
#include <HavrinFoundation/platform/time/zone.h>

#include <cstdint>
#include <optional>

namespace havrin {
inline namespace platform {

/// The first and the last instant that calendars have.
inline constexpr Date kFirstCalendarDate = Date::fromTimeIntervalSince1970(-184'303'902'528'000.0);
inline constexpr Date kLastCalendarDate = Date::fromTimeIntervalSince1970(183'882'168'921'600.0);

/// A month, from 1, and a day of it, from 1. Months of the Hebrew calendar run from 1 (Tishri) to 13 (Elul), and 6
/// (Adar I) is left out in years that are not leap years.
struct MonthAndDay {
  int month;
  int day;

  friend constexpr bool operator==(MonthAndDay, MonthAndDay) = default;
};

/// What a calendar and a clock on the wall show.
struct DateComponents {
  std::optional<std::int64_t> era;  // 1 is the present one, 0 the one before Christ, in the Gregorian calendar
  std::optional<std::int64_t> year;
  std::optional<std::int64_t> month;
  std::optional<std::int64_t> day;
  std::optional<std::int64_t> hour;
  std::optional<std::int64_t> minute;
  std::optional<std::int64_t> second;
  std::optional<std::int64_t> weekday;  // 1 is Sunday

  friend constexpr bool operator==(const DateComponents&, const DateComponents&) = default;
};

/// A calendar system in a time zone. A small value that never changes.
class HAVRIN_EXPORT Calendar {
 public:
  /// The user's calendar as it is now: the calendar of `Locale::current` in `TimeZone::current`.
  /// Cost: one pass over the environment.
  /// Threads: any, as long as none changes the environment meanwhile.
  [[nodiscard]] static Calendar current();

  Calendar(CalendarIdentifier identifier, TimeZone zone) : identifier_(identifier), zone_(zone) {}

  [[nodiscard]] CalendarIdentifier identifier() const { return identifier_; }
  [[nodiscard]] TimeZone timeZone() const { return zone_; }

  /// Month and day of the local day on which `date` falls.
  /// Empty when: `date` is not a number.
  [[nodiscard]] std::optional<MonthAndDay> monthAndDay(Date date) const;

  /// Everything that `date` is in this calendar; whole seconds, rounded down. All empty for not-a-number.
  [[nodiscard]] DateComponents components(Date date) const;

  /// The first instant of the local day on which `date` falls: the first midnight where there are two, the end of the
  /// gap where there is none. Not-a-number for not-a-number.
  [[nodiscard]] Date startOfDay(Date date) const;

  /// The instant with the same wall-clock time `days` later; fractions of a second are kept.
  /// Result: 0 days give `date` itself. A time that the target day lacks moves forward by the gap in the clock; one
  /// that it has twice is the one with the offset of `date`, if either has it. Beyond the calendar: its first or last
  /// instant. Choice: a day that a zone skipped (Samoa, 30 December 2011) is approached from both sides without
  /// standing still: from behind, its times are those of the day before.
  [[nodiscard]] Date dateByAddingDays(Date date, std::int64_t days) const;

  /// Local days from `from` to `to`: the difference of the numbers of the days on which they fall, whatever the times.
  /// Result: negative when `to` falls on an earlier day; 0 when either is not a number.
  [[nodiscard]] std::int64_t days(Date from, Date to) const;

  /// Whole minutes of 60 elapsed seconds from `from` to `to`, a part of a minute not counting.
  /// Result: negative when `to` is earlier; 0 when either is not a number.
  [[nodiscard]] std::int64_t minutes(Date from, Date to) const;

  friend bool operator==(const Calendar&, const Calendar&) = default;

 private:
  CalendarIdentifier identifier_;
  TimeZone zone_;
};

}  // namespace platform
}  // namespace havrin
