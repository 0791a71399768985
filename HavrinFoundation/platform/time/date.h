// SPDX-License-Identifier: Apache-2.0
// Instants.
//
//   Date::fromTimeIntervalSince1970(1.5)                      1.5 s after 1970-01-01 00:00:00 UTC
//   Date()                                                    2001-01-01 00:00:00 UTC
//   Date::now() - Date(std::chrono::system_clock::now())      a few millionths of a second
//   Date::fromTimeIntervalSince1970(86400) > Date()           false
//
// A date is a double of seconds counted from 2001, so that dates of our time keep their fraction to about a tenth of a
// microsecond. Every minute has 60 seconds: leap seconds are not counted.
//
// Left out: the distant past and future as named values, text (see date_format.h), calendar fields (see calendar.h).
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <compare>
#include <cstdint>
#include <string_view>  // std::hash
#include <type_traits>
#include <utility>

namespace havrin {

namespace detail {
/// A time point of std::chrono::system_clock, known by what only that clock has: <chrono> is left to its users.
template <class Point>
concept SystemTimePoint = requires(const Point& point) {
  Point::clock::from_time_t({});
  typename Point::rep;
  typename Point::period;
  point.time_since_epoch().count();
};
}  // namespace detail

inline namespace platform {

/// The first instant of 2001 in seconds since the first instant of 1970.
inline constexpr std::int64_t kReferenceSecondsSince1970 = 978'307'200;

/// An instant, held as seconds since 2001-01-01 00:00:00 UTC. Equality, order and hash are those of that double, so a
/// not-a-number instant equals nothing and is unordered.
class Date {
 public:
  /// 2001-01-01 00:00:00 UTC.
  constexpr Date() = default;

  /// The instant `seconds` after 2001-01-01 00:00:00 UTC.
  [[nodiscard]] static constexpr Date fromTimeIntervalSinceReferenceDate(double seconds) { return Date(seconds); }

  /// The instant `seconds` after 1970-01-01 00:00:00 UTC, rounded to the nearest double of seconds since 2001.
  [[nodiscard]] static constexpr Date fromTimeIntervalSince1970(double seconds) {
    return Date(seconds - static_cast<double>(kReferenceSecondsSince1970));
  }

  /// The same instant as `point`, rounded to the nearest double of seconds since 2001.
  template <detail::SystemTimePoint Point>
  explicit constexpr Date(const Point& point)
      : seconds_(secondsOf<typename Point::period>(point.time_since_epoch().count())) {}

  /// The current instant of the wall clock, which a test may own (see base/clock.h).
  [[nodiscard]] HAVRIN_EXPORT static Date now();

  /// Seconds since 2001-01-01 00:00:00 UTC, exactly as held.
  [[nodiscard]] constexpr double timeIntervalSinceReferenceDate() const { return seconds_; }

  /// Seconds since 1970-01-01 00:00:00 UTC, rounded: a date made from 0.001 answers 0.0010000467.
  [[nodiscard]] constexpr double timeIntervalSince1970() const {
    return seconds_ + static_cast<double>(kReferenceSecondsSince1970);
  }

  /// The time point nearest to this instant, such as std::chrono::sys_seconds: a std::chrono::sys_time that counts
  /// seconds or an integral part of a second.
  /// Result: the first or last value of `Point` where the instant lies beyond it; 1970 for not-a-number.
  template <detail::SystemTimePoint Point>
  [[nodiscard]] Point timePoint() const;

  /// The instant `seconds` later.
  friend constexpr Date operator+(Date date, double seconds) { return Date(date.seconds_ + seconds); }
  /// The instant `seconds` earlier.
  friend constexpr Date operator-(Date date, double seconds) { return Date(date.seconds_ - seconds); }
  /// Seconds from `earlier` to `later`.
  friend constexpr double operator-(Date later, Date earlier) { return later.seconds_ - earlier.seconds_; }

  friend constexpr bool operator==(Date, Date) = default;
  friend constexpr std::partial_ordering operator<=>(Date, Date) = default;

 private:
  explicit constexpr Date(double secondsSinceReferenceDate) : seconds_(secondsSinceReferenceDate) {}

  // Whole seconds apart from the rest: a nanosecond count has more digits than a double.
  template <class Period, class Rep>
  static constexpr double secondsOf(Rep ticks) {
    constexpr auto kReference = static_cast<double>(kReferenceSecondsSince1970);
    if constexpr (std::is_floating_point_v<Rep> || Period::num >= Period::den) {
      return static_cast<double>(ticks) * static_cast<double>(Period::num) / static_cast<double>(Period::den) -
             kReference;
    } else {
      const std::int64_t count = ticks;
      const std::int64_t down = count % Period::den < 0 ? 1 : 0;
      const std::int64_t periods = count / Period::den - down;
      const std::int64_t rest = (count % Period::den + down * Period::den) * Period::num;
      return static_cast<double>(periods * Period::num + rest / Period::den) - kReference +
             static_cast<double>(rest % Period::den) / static_cast<double>(Period::den);
    }
  }

  double seconds_ = 0;
};

template <detail::SystemTimePoint Point>
Point Date::timePoint() const {
  using Duration = typename Point::duration;
  using Rep = typename Point::rep;
  using Period = typename Point::period;
  if constexpr (std::is_floating_point_v<Rep>) {
    return Point(Duration(static_cast<Rep>(timeIntervalSince1970() * static_cast<double>(Period::den) /
                                           static_cast<double>(Period::num))));
  } else {
    static_assert(Period::num == 1, "Date::timePoint counts in seconds or in an integral part of a second");
    if (seconds_ != seconds_) return Point();
    const double whole = __builtin_floor(seconds_);
    const double rest = __builtin_nearbyint((seconds_ - whole) * static_cast<double>(Period::den));
    std::int64_t ticks = 0;
    if (__builtin_fabs(whole) > 9.0e18 ||
        __builtin_mul_overflow(static_cast<std::int64_t>(whole) + kReferenceSecondsSince1970, Period::den, &ticks) ||
        __builtin_add_overflow(ticks, static_cast<std::int64_t>(rest), &ticks) || !std::in_range<Rep>(ticks)) {
      return seconds_ > 0 ? Point::max() : Point::min();
    }
    return Point(Duration(static_cast<Rep>(ticks)));
  }
}

}  // namespace platform
}  // namespace havrin

template <>
struct std::hash<havrin::Date> {
  std::size_t operator()(havrin::Date date) const noexcept {
    return std::hash<double>()(date.timeIntervalSinceReferenceDate());
  }
};
