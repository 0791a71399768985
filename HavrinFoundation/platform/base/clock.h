// SPDX-License-Identifier: Apache-2.0
// The two clocks, and the one place where a test replaces them.
//
//   double start = monotonicSeconds();
//   work();
//   double took = monotonicSeconds() - start;      never negative, whatever happens to the date
//   wallSecondsSince1970()                         1709649000.25 on 5 March 2024 at 14:30:00.25 GMT
//
// Dates, delayed performs, throttling, run loops, log lines and the look-up of the system's time zone read the time
// here. Waiting without a deadline of this clock uses the system's: a run loop in waitForWake, idle worker threads.
//
// Left out: time zones, and waiting (a run loop waits).
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// Seconds of a clock that only runs forwards, whatever happens to the date; its zero is arbitrary.
/// Cost: one system clock reading without a system call, about 30 ns.
/// Threads: any; two readings in one thread never decrease.
[[nodiscard]] HAVRIN_EXPORT double monotonicSeconds();

/// Seconds since the first instant of 1970, GMT, without leap seconds; moves when the date is set.
[[nodiscard]] HAVRIN_EXPORT double wallSecondsSince1970();

/// A number that changes as time passes: about every 4 ms with the system's clocks; with an installed source whenever
/// its monotonic clock moves, and when a source is installed. For answers that may be some milliseconds old.
/// Cost: a quarter of monotonicSeconds with the system's clocks.
[[nodiscard]] HAVRIN_EXPORT std::int64_t coarseTick();

/// Replaces both clocks in a test.
class HAVRIN_EXPORT ClockSource {
 public:
  ClockSource() = default;
  ClockSource(const ClockSource&) = delete;
  ClockSource& operator=(const ClockSource&) = delete;

  /// The answer of `havrin::monotonicSeconds` while this source is installed. Called on any thread.
  [[nodiscard]] virtual double monotonicSeconds() const = 0;
  /// The answer of `havrin::wallSecondsSince1970` while this source is installed. Called on any thread.
  [[nodiscard]] virtual double wallSecondsSince1970() const = 0;
  /// A run loop of the calling thread has nothing to do before `deadline`, which may be infinite.
  /// Result: true when this source has brought the time there; false when the loop is to wait until it is woken.
  [[nodiscard]] virtual bool passTimeTo(double deadline) = 0;

 protected:
  virtual ~ClockSource();
};

/// Puts `source` in place of the system's clocks, or the system's clocks back when it is null.
/// Result: the source that was installed before, null for the system's clocks.
/// Threads: any. The source must outlive every reading that has begun; meant for test programs.
HAVRIN_EXPORT ClockSource* installClockSource(ClockSource* source);

/// The installed source, null for the system's clocks.
[[nodiscard]] HAVRIN_EXPORT ClockSource* installedClockSource();

}  // namespace platform
}  // namespace havrin
