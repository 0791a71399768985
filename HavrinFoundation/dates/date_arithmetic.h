// SPDX-License-Identifier: Apache-2.0
// Millisecond timestamps and calendar arithmetic. As messages on NSDate: date_arithmetic_messages.h.
//
//   millisecondsSince1970(fromMillisecondsSince1970<Date>(1500))     1000: whole seconds, rounded toward zero
//   dateByAddingDays(date, 1)                                        the same time tomorrow, if 23 or 25 hours away
//   numberOfCalendarDays(at2359, at0001)                             1: it was another day
//   numberOfCalendarMinutes<Date>(at2359, at0001)                    2
//   isSameMonthAndDayAsToday(birthday)                               whatever the year
//
// Every calendar question is answered in the user's calendar and time zone as they are at the call (Calendar::current).
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/time/date.h>

#include <concepts>
#include <cstdint>

namespace havrin {

/// The instant `milliseconds` after 1970-01-01 00:00:00 UTC, the fraction of a second kept as well as a double can.
template <std::same_as<Date> ClassType>
[[nodiscard]] constexpr ClassType fromMillisecondsSince1970(std::int64_t milliseconds) {
  return Date::fromTimeIntervalSince1970(static_cast<double>(milliseconds) / 1000.0);
}

/// The whole seconds since 1970-01-01 00:00:00 UTC, rounded toward zero, times 1000: never a part of a second.
/// Choice: the greatest or least 64-bit integer where the product has no room; 0 for not-a-number.
[[nodiscard]] HAVRIN_EXPORT std::int64_t millisecondsSince1970(Date date);

/// Whether month and day of `date` are those of the current instant.
[[nodiscard]] HAVRIN_EXPORT bool isSameMonthAndDayAsToday(Date date);

/// Whether both dates have the same month and the same day of it, in whatever years.
/// Choice: false where either is not a number.
[[nodiscard]] HAVRIN_EXPORT bool isSameMonthAndDay(Date date, Date other);

/// The instant `days` calendar days later, with the same wall-clock time; see Calendar::dateByAddingDays.
/// Choice: the calendar's first or last instant where `days` lead beyond it.
[[nodiscard]] HAVRIN_EXPORT Date dateByAddingDays(Date date, std::int64_t days);

/// How many calendar days later `to` falls, whatever the times; negative when earlier, 0 on the same day.
/// Result: a day counts as one however long it was, and also when a zone skipped it.
[[nodiscard]] HAVRIN_EXPORT std::int64_t numberOfCalendarDays(Date from, Date to);

/// Whole minutes from `first` to `second`, negative when `second` is earlier; a part of a minute does not count.
template <std::same_as<Date> ClassType>
[[nodiscard]] std::int64_t numberOfCalendarMinutes(Date first, Date second);

template <>
[[nodiscard]] HAVRIN_EXPORT std::int64_t numberOfCalendarMinutes<Date>(Date first, Date second);

}  // namespace havrin
