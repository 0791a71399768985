// SPDX-License-Identifier: Apache-2.0
// The civil days of day numbers in the Gregorian calendar, whose days before 15 October 1582 are Julian. Internal.
//
//   civilDayOf(0)                      1970-01-01
//   civilDayOf(-141'427)               1582-10-15, the first Gregorian day
//   civilDayOf(-141'428)               1582-10-04, the last Julian day
//   civilDayOf(-171'596)               1500-02-29: the Julian year 1500 is a leap year
//   weekdayOf(0)                       4, a Thursday
//
// Source: C. Neri and L. Schneider, "Euclidean affine functions and their application to calendar algorithms",
// Software: Practice and Experience 53 (2023), for the arithmetic without loops and with one wide multiplication per
// field.
#pragma once

#include <cstdint>

namespace havrin {
inline namespace platform {

/// A civil day. Years are astronomical: 0 is the year before 1.
struct CivilDay {
  std::int64_t year;
  int month;
  int day;

  friend constexpr bool operator==(const CivilDay&, const CivilDay&) = default;
};

inline constexpr std::int64_t kSecondsPerDay = 86'400;

/// The number, counted from 1970-01-01, of the first Gregorian day, 1582-10-15.
inline constexpr std::int64_t kFirstGregorianDay = -141'427;

}  // namespace platform

namespace detail {

// Years start on 1 March here, so that the leap day is the last day. A shift by whole cycles keeps every count
// positive.
inline constexpr std::int64_t kGregorianCycleYears = 400;
inline constexpr std::int64_t kGregorianCycleDays = 146'097;
inline constexpr std::int64_t kGregorianMarchFirst = 719'468;  // days from 0000-03-01 to 1970-01-01
inline constexpr std::int64_t kJulianCycleYears = 4;
inline constexpr std::int64_t kJulianCycleDays = 1'461;
inline constexpr std::int64_t kJulianMarchFirst = 719'470;
inline constexpr std::int64_t kShiftYears = 6'000'000;  // more than any calendar reaches; a multiple of both cycles

/// Month and day from the day of a year that starts in March, and whether January and February are meant.
constexpr CivilDay monthAndDay(std::int64_t marchYear, std::uint32_t dayOfYear) {
  const std::uint32_t scaled = 2141 * dayOfYear + 197'913;
  const std::uint32_t month = scaled >> 16;
  const bool nextYear = dayOfYear >= 306;
  return {marchYear + nextYear, static_cast<int>(nextYear ? month - 12 : month),
          static_cast<int>((scaled & 0xFFFF) / 2141) + 1};
}

constexpr CivilDay gregorianDayOf(std::int64_t dayNumber) {
  constexpr std::int64_t kShiftDays = kShiftYears / kGregorianCycleYears * kGregorianCycleDays;
  const std::uint64_t quarters = 4 * static_cast<std::uint64_t>(dayNumber + kGregorianMarchFirst + kShiftDays) + 3;
  const std::uint64_t century = quarters / kGregorianCycleDays;
  const std::uint32_t inCentury = static_cast<std::uint32_t>(quarters % kGregorianCycleDays) | 3;
  const std::uint64_t product = std::uint64_t{2'939'745} * inCentury;
  const std::uint32_t yearOfCentury = static_cast<std::uint32_t>(product >> 32);
  const std::uint32_t dayOfYear = static_cast<std::uint32_t>(product) / 2'939'745 / 4;
  return monthAndDay(static_cast<std::int64_t>(100 * century + yearOfCentury) - kShiftYears, dayOfYear);
}

constexpr CivilDay julianDayOf(std::int64_t dayNumber) {
  constexpr std::int64_t kShiftDays = kShiftYears / kJulianCycleYears * kJulianCycleDays;
  const std::uint64_t quarters = 4 * static_cast<std::uint64_t>(dayNumber + kJulianMarchFirst + kShiftDays) + 3;
  return monthAndDay(static_cast<std::int64_t>(quarters / kJulianCycleDays) - kShiftYears,
                     static_cast<std::uint32_t>(quarters % kJulianCycleDays) / 4);
}

}  // namespace detail

inline namespace platform {

/// The quotient rounded down.
constexpr std::int64_t floorDivide(std::int64_t dividend, std::int64_t divisor) {
  const std::int64_t quotient = dividend / divisor;
  return quotient - (dividend % divisor < 0);
}

/// The civil day of a day number, at most six million years from 1970.
constexpr CivilDay civilDayOf(std::int64_t dayNumber) {
  return dayNumber >= kFirstGregorianDay ? detail::gregorianDayOf(dayNumber) : detail::julianDayOf(dayNumber);
}

/// The day of the week, 0 for Sunday.
constexpr int weekdayOf(std::int64_t dayNumber) {
  return static_cast<int>(dayNumber + 4 - floorDivide(dayNumber + 4, 7) * 7);
}

}  // namespace platform
}  // namespace havrin
