// SPDX-License-Identifier: Apache-2.0
// Calendars that are not Gregorian: what ICU is asked for. Internal.
#pragma once

#include <HavrinFoundation/platform/time/calendar.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// Whether months and days of the calendar are the Gregorian ones, its years and eras aside.
[[nodiscard]] bool hasGregorianMonths(CalendarIdentifier calendar);

/// Era, year, month and day of a day, by its number from 1970-01-01; the other components stay empty.
[[nodiscard]] DateComponents dayComponents(CalendarIdentifier calendar, std::int64_t dayNumber);

}  // namespace platform
}  // namespace havrin
