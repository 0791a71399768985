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

#include <chrono>
#include <cmath>
#include <compare>
#include <cstdint>
#include <functional>
#include <ratio>
#include <utility>

namespace havrin {
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
  template <class Duration>
  explicit constexpr Date(std::chrono::sys_time<Duration> point) : seconds_(secondsOf(point.time_since_epoch())) {}

  /// The current instant of the wall clock, which a test may own (see base/clock.h).
  [[nodiscard]] HAVRIN_EXPORT static Date now();

  /// Seconds since 2001-01-01 00:00:00 UTC, exactly as held.
  [[nodiscard]] constexpr double timeIntervalSinceReferenceDate() const { return seconds_; }

  /// Seconds since 1970-01-01 00:00:00 UTC, rounded: a date made from 0.001 answers 0.0010000467.
  [[nodiscard]] constexpr double timeIntervalSince1970() const {
    return seconds_ + static_cast<double>(kReferenceSecondsSince1970);
  }

  /// The time point nearest to this instant, counted in `Duration`, a second or an integral part of one.
  /// Result: the first or last time point that `Duration` has where the instant lies beyond it; 1970 for not-a-number.
  template <class Duration = std::chrono::system_clock::duration>
  [[nodiscard]] std::chrono::sys_time<Duration> timePoint() const;

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

  template <class Rep, class Period>
  static constexpr double secondsOf(std::chrono::duration<Rep, Period> since1970) {
    using Seconds = std::chrono::duration<double>;
    if constexpr (std::chrono::treat_as_floating_point_v<Rep> || std::ratio_greater_equal_v<Period, std::ratio<1>>) {
      return Seconds(since1970).count() - static_cast<double>(kReferenceSecondsSince1970);
    } else {  // whole seconds apart from the rest: a nanosecond count has more digits than a double
      const auto whole = std::chrono::floor<std::chrono::duration<std::int64_t>>(since1970);
      return static_cast<double>(whole.count()) - static_cast<double>(kReferenceSecondsSince1970) +
             Seconds(since1970 - whole).count();
    }
  }

  double seconds_ = 0;
};

template <class Duration>
std::chrono::sys_time<Duration> Date::timePoint() const {
  using Point = std::chrono::sys_time<Duration>;
  using Rep = typename Duration::rep;
  using Period = typename Duration::period;
  if constexpr (std::chrono::treat_as_floating_point_v<Rep>) {
    return Point(std::chrono::duration<double>(timeIntervalSince1970()));
  } else {
    static_assert(Period::num == 1, "Date::timePoint counts in seconds or in an integral part of a second");
    if (seconds_ != seconds_) return Point();
    const double whole = std::floor(seconds_);
    const double rest = std::nearbyint((seconds_ - whole) * static_cast<double>(Period::den));
    std::int64_t ticks = 0;
    if (std::abs(whole) > 9.0e18 ||
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
