// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/calendar.h>

#include <HavrinFoundation/platform/time/civil.h>
#include <HavrinFoundation/platform/time/environment.h>
#include <HavrinFoundation/platform/time/instant.h>
#include <HavrinFoundation/platform/time/other_calendars.h>
#include <HavrinFoundation/platform/time/system_zone.h>
#include <HavrinFoundation/platform/time/text_cache.h>
#include <HavrinFoundation/platform/time/zone_rules.h>

#include <algorithm>
#include <cmath>

namespace havrin {
inline namespace platform {
namespace {

constinit TextCache<CalendarIdentifier> localeCalendars;

}  // namespace

Calendar Calendar::current() {
  const TimeEnvironment environment = readTimeEnvironment();
  const CalendarIdentifier identifier =
      localeCalendars.get(environment.locale(), [](std::string_view name) { return Locale(name).calendar(); });
  return {identifier, TimeZone(currentRules(environment.zone))};
}

std::optional<MonthAndDay> Calendar::monthAndDay(Date date) const {
  if (isNotANumber(date)) return std::nullopt;
  const std::int64_t dayNumber = zone_.rules().dayNumberAt(instantOf(date).seconds);
  if (hasGregorianMonths(identifier_)) {
    const CivilDay civil = civilDayOf(dayNumber);
    return MonthAndDay{civil.month, civil.day};
  }
  const DateComponents other = dayComponents(identifier_, dayNumber);
  return MonthAndDay{static_cast<int>(other.month.value_or(0)), static_cast<int>(other.day.value_or(0))};
}

DateComponents Calendar::components(Date date) const {
  if (isNotANumber(date)) return {};
  const std::int64_t second = instantOf(date).seconds;
  const std::int64_t local = second + zone_.rules().offsetAt(second);
  const std::int64_t dayNumber = floorDivide(local, kSecondsPerDay);
  const std::int64_t time = local - dayNumber * kSecondsPerDay;
  DateComponents components;
  if (identifier_ == CalendarIdentifier::gregorian) {
    const CivilDay civil = civilDayOf(dayNumber);
    components.era = civil.year > 0;
    components.year = civil.year > 0 ? civil.year : 1 - civil.year;
    components.month = civil.month;
    components.day = civil.day;
  } else {
    components = dayComponents(identifier_, dayNumber);
  }
  components.hour = time / 3600;
  components.minute = time / 60 % 60;
  components.second = time % 60;
  components.weekday = weekdayOf(dayNumber) + 1;
  return components;
}

Date Calendar::startOfDay(Date date) const {
  if (isNotANumber(date)) return date;
  const std::int64_t start = zone_.rules().startOfDay(instantOf(date).seconds);
  return Date::fromTimeIntervalSince1970(static_cast<double>(start));
}

Date Calendar::dateByAddingDays(Date date, std::int64_t days) const {
  constexpr std::int64_t kMostDays = (kLastSecond - kFirstSecond) / kSecondsPerDay;
  if (days == 0 || isNotANumber(date)) return date;
  const Date start = std::clamp(date, kFirstCalendarDate, kLastCalendarDate);
  const std::int64_t second = instantOf(start).seconds;
  const std::int64_t count = std::clamp(days, -kMostDays, kMostDays);
  const std::int64_t sameTimeGmt = second + count * kSecondsPerDay;
  if (sameTimeGmt <= kFirstSecond) return kFirstCalendarDate;
  if (sameTimeGmt >= kLastSecond) return kLastCalendarDate;
  const Date result = start + static_cast<double>(zone_.rules().addDays(second, count) - second);
  return std::clamp(result, kFirstCalendarDate, kLastCalendarDate);
}

std::int64_t Calendar::days(Date from, Date to) const {
  if (isNotANumber(from) || isNotANumber(to)) return 0;
  const ZoneRules& rules = zone_.rules();
  return rules.dayNumberAt(instantOf(to).seconds) - rules.dayNumberAt(instantOf(from).seconds);
}

std::int64_t Calendar::minutes(Date from, Date to) const {
  if (isNotANumber(from) || isNotANumber(to)) return 0;
  // Whole seconds and fractions apart: the difference of two doubles may be rounded up to a whole minute. The fractions
  // are multiples of different powers of two on the two sides of 2^k seconds, so that their difference is exact to a
  // microsecond only.
  const Instant first = instantOf(from);
  const Instant second = instantOf(to);
  constexpr std::int64_t kMicroseconds = 1'000'000;
  const std::int64_t micros = std::llround((second.fraction - first.fraction) * kMicroseconds);
  std::int64_t seconds = second.seconds - first.seconds + micros / kMicroseconds;
  if (seconds > 0 && micros % kMicroseconds < 0) --seconds;
  if (seconds < 0 && micros % kMicroseconds > 0) ++seconds;
  return seconds / 60;
}

}  // namespace platform
}  // namespace havrin
