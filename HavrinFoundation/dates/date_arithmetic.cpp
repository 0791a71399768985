// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/dates/date_arithmetic.h>

#include <HavrinFoundation/platform/time/calendar.h>

#include <limits>

namespace havrin {

std::int64_t millisecondsSince1970(Date date) {
  using Limits = std::numeric_limits<std::int64_t>;
  constexpr std::int64_t kMostSeconds = Limits::max() / 1000;
  const double seconds = date.timeIntervalSince1970();
  if (seconds != seconds) return 0;
  // The seconds are checked as a double first, for beyond 64 bits the conversion itself is undefined.
  if (seconds > 1e16) return Limits::max();
  if (seconds < -1e16) return Limits::min();
  const std::int64_t whole = static_cast<std::int64_t>(seconds);
  if (whole > kMostSeconds) return Limits::max();
  if (whole < -kMostSeconds) return Limits::min();
  return whole * 1000;
}

bool isSameMonthAndDayAsToday(Date date) { return isSameMonthAndDay(date, Date::now()); }

bool isSameMonthAndDay(Date date, Date other) {
  const Calendar calendar = Calendar::current();
  const std::optional<MonthAndDay> first = calendar.monthAndDay(date);
  return first.has_value() && first == calendar.monthAndDay(other);
}

Date dateByAddingDays(Date date, std::int64_t days) { return Calendar::current().dateByAddingDays(date, days); }

std::int64_t numberOfCalendarDays(Date from, Date to) { return Calendar::current().days(from, to); }

template <>
std::int64_t numberOfCalendarMinutes<Date>(Date first, Date second) {
  return Calendar::current().minutes(first, second);
}

}  // namespace havrin
