// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/other_calendars.h>

#include <HavrinFoundation/platform/time/civil.h>
#include <HavrinFoundation/platform/time/instant.h>

#include <unicode/calendar.h>
#include <unicode/locid.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

namespace havrin {
inline namespace platform {
namespace {

std::unique_ptr<icu::Calendar> makeCalendar(CalendarIdentifier calendar) {
  UErrorCode status = U_ZERO_ERROR;
  const std::string name = "und@calendar=" + std::string(nameOf(calendar));
  return std::unique_ptr<icu::Calendar>(
      icu::Calendar::createInstance(icu::TimeZone::getGMT()->clone(), icu::Locale(name.c_str()), status));
}

/// This thread's calendar of a kind: ICU's calendars work for one caller at a time.
icu::Calendar* threadCalendar(CalendarIdentifier calendar) {
  thread_local std::map<CalendarIdentifier, std::unique_ptr<icu::Calendar>> calendars;
  std::unique_ptr<icu::Calendar>& found = calendars[calendar];
  if (found == nullptr) found = makeCalendar(calendar);
  return found.get();
}

}  // namespace

bool hasGregorianMonths(CalendarIdentifier calendar) {
  return calendar == CalendarIdentifier::gregorian || calendar == CalendarIdentifier::buddhist ||
         calendar == CalendarIdentifier::japanese || calendar == CalendarIdentifier::republicOfChina;
}

DateComponents dayComponents(CalendarIdentifier identifier, std::int64_t dayNumber) {
  icu::Calendar* calendar = threadCalendar(identifier);
  if (calendar == nullptr) return {};
  const std::int64_t second = std::clamp(dayNumber * kSecondsPerDay, kFirstSecond, kLastSecond);
  UErrorCode status = U_ZERO_ERROR;
  calendar->setTime(static_cast<double>(second) * 1000, status);
  DateComponents components;
  components.era = calendar->get(UCAL_ERA, status);
  components.year = calendar->get(UCAL_YEAR, status);
  components.month = calendar->get(UCAL_MONTH, status) + 1;
  components.day = calendar->get(UCAL_DATE, status);
  return U_SUCCESS(status) ? components : DateComponents{};
}

}  // namespace platform
}  // namespace havrin
