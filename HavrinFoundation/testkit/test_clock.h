// SPDX-License-Identifier: Apache-2.0
// A clock that moves only when the test says so, and the run loop that follows it. While a TestClock lives, everything
// in the process that asks for the time gets the test's: dates, delayed performs, throttling, run loops.
//
//   TestClock clock;                              // time does not pass
//   send<"h_debounce:delay:">(field, selector<"search">, 0.3);
//   clock.advance(0.2);                           // nothing runs
//   clock.advance(0.1);                           // search runs, at exactly 0.3 s
//
//   clock.runUntil([&] { return delivered; })     // lets other threads' work for this one come; no time passes
//
// A run loop that waits under this clock lets the time pass to its next deadline at once, when it is the loop of the
// thread that made the clock; loops of other threads wait until the clock is moved.
//
// Left out: more than one clock at a time; the system's own timers, which know nothing of it.
#pragma once

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace havrin {

class TestClock final : public ClockSource {
 public:
  /// Takes the process's clocks over, until it is destroyed; the calling thread drives it. At first the monotonic clock
  /// reads 1000 s and the wall clock 2024-03-05 14:30:00 GMT. Throws: std::logic_error when there is one already.
  TestClock() {
    if (installedClockSource() != nullptr) throw std::logic_error("there is a test clock already");
    installClockSource(this);
  }
  ~TestClock() override {
    installClockSource(nullptr);
    RunLoop::wakeAll();
  }

  [[nodiscard]] double monotonicSeconds() const override { return secondsOf(now_.load(std::memory_order_acquire)); }
  [[nodiscard]] double wallSecondsSince1970() const override {
    return wallOffset_.load(std::memory_order_acquire) + monotonicSeconds();
  }

  /// Sets the date, as a user would: the monotonic clock does not move.
  void setWallSecondsSince1970(double seconds) {
    wallOffset_.store(seconds - monotonicSeconds(), std::memory_order_release);
  }

  /// Runs everything that is due on the calling thread's loop, then moves on to each deadline in turn and runs what is
  /// due there, until `seconds` have passed. Work that comes meanwhile is run as well; work that arranges itself again
  /// without a delay is never done.
  void advance(double seconds, std::string_view mode = NSDefaultRunLoopMode) {
    const double end = monotonicSeconds() + seconds;
    runDue(mode);
    for (;;) {
      const std::optional<double> next = RunLoop::current().nextDeadline(mode);
      if (!next || *next > end) break;
      moveTo(*next);
      runDue(mode);
    }
    moveTo(end);
    runDue(mode);
  }

  /// Lets `seconds` pass while this thread is busy: nothing runs meanwhile.
  void spend(double seconds) { moveTo(monotonicSeconds() + seconds); }

  /// Runs what is due on the calling thread's loop, pass after pass, until nothing is; no time passes.
  void runDue(std::string_view mode = NSDefaultRunLoopMode) {
    while (RunLoop::current().runDue(mode)) {
    }
  }

  /// Runs what comes to the calling thread's loop from other threads until `condition` holds; no time passes.
  /// Result: false when it did not come to hold within half a minute of real time.
  template <std::predicate Condition>
  [[nodiscard]] bool runUntil(Condition condition, std::string_view mode = NSDefaultRunLoopMode) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
      const std::chrono::duration<double> left = end - std::chrono::steady_clock::now();
      if (left.count() <= 0) return false;
      if (!RunLoop::current().runDue(mode)) RunLoop::current().waitForWake(left.count(), mode);
    }
    return true;
  }

  [[nodiscard]] bool passTimeTo(double deadline) override {
    if (std::this_thread::get_id() != driver_ || deadline == std::numeric_limits<double>::infinity()) return false;
    moveTo(deadline);
    return true;
  }

 private:
  // Counted in nanoseconds, so that 0.2 s and 0.1 s come to the very reading that is 0.3 s away.
  static double secondsOf(std::int64_t nanoseconds) { return static_cast<double>(nanoseconds) / 1e9; }

  void moveTo(double time) {
    std::int64_t wanted = std::llrint(time * 1e9);
    if (secondsOf(wanted) < time) ++wanted;
    now_.store(std::max(now_.load(std::memory_order_acquire), wanted), std::memory_order_release);
    RunLoop::wakeAll();
  }

  const std::thread::id driver_ = std::this_thread::get_id();
  std::atomic<std::int64_t> now_{1'000'000'000'000};
  std::atomic<double> wallOffset_{1'709'649'000 - 1000};
};

}  // namespace havrin
