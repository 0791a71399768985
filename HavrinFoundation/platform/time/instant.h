// SPDX-License-Identifier: Apache-2.0
// Dates as whole seconds since 1970 and a fraction, inside the range of every calendar. Internal.
#pragma once

#include <HavrinFoundation/platform/time/date.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// The first and the last whole second, counted from 1970, of every calendar: about 5.8 million years each way.
inline constexpr std::int64_t kFirstSecond = -184'303'902'528'000;
inline constexpr std::int64_t kLastSecond = 183'882'168'921'600;

/// An instant as the sum of whole seconds since 1970-01-01 00:00:00 UTC and a fraction in [0, 1).
struct Instant {
  std::int64_t seconds;
  double fraction;
};

/// The parts of `date`, which may be any double but not-a-number; beyond the calendars' range, its nearest end.
inline Instant instantOf(Date date) {
  constexpr double kFirst = static_cast<double>(kFirstSecond - kReferenceSecondsSince1970);
  constexpr double kLast = static_cast<double>(kLastSecond - kReferenceSecondsSince1970);
  double seconds = date.timeIntervalSinceReferenceDate();
  seconds = seconds < kFirst ? kFirst : seconds > kLast ? kLast : seconds;
  const std::int64_t truncated = static_cast<std::int64_t>(seconds);
  const std::int64_t whole = truncated - (seconds < static_cast<double>(truncated));
  return {whole + kReferenceSecondsSince1970, seconds - static_cast<double>(whole)};
}

inline bool isNotANumber(Date date) { return date != date; }

}  // namespace platform
}  // namespace havrin
