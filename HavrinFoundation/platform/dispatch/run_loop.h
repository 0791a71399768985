// SPDX-License-Identifier: Apache-2.0
// Run loops: one per thread, made at the thread's first use of it. A run loop runs delayed work when it is due and
// posted work when it arrives; the main thread's also runs the main queue.
//
//   RunLoop& loop = RunLoop::current();
//   loop.performAfter(0.3, [] { redraw(); });
//   loop.runUntil(monotonicSeconds() + 1);                        redraws after 0.3 s, returns after 1 s
//   loop.performAfter(0, [] { ... }, "tracking");                 only when the loop runs in that mode
//
// Work waits in a *mode*; a loop that runs in one mode leaves the others' alone. Modes are names; the common modes are
// the default mode and those that were added to them, and the main queue is run in these. Times are readings of
// monotonicSeconds (clock.h).
//
// A run loop ends with its thread: pending work is destroyed on that thread without being run. The main thread's never
// ends.
//
// A source keeps a loop waiting (run_loop_source.h).
//
// Left out: repeating timers (work may arrange itself again), input from file descriptors (host_loop.h is for living
// inside a loop that has them), observers, stopping a loop from outside (let the condition around runMode end).
#pragma once

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/work.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/reference.h>

#include <concepts>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace havrin {
inline namespace platform {

class NSThread;

inline constexpr std::string_view NSDefaultRunLoopMode = "havrin.default";
/// Not a mode of its own: what waits in it is run in each common mode.
inline constexpr std::string_view NSRunLoopCommonModes = "havrin.common";

class HAVRIN_EXPORT RunLoop : public std::enable_shared_from_this<RunLoop> {
 public:
  /// The calling thread's run loop. Other threads that post to it keep it by `shared_from_this`.
  [[nodiscard]] static RunLoop& current();
  /// The main thread's, on any thread.
  [[nodiscard]] static RunLoop& main();

  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;

  /// Runs the work of the mode: delayed work when it is due, posted work, and in a common mode of the main thread's
  /// loop the main queue. Waits for more, and returns when a batch of posted work or of the main queue has been run, at
  /// `limit`, or when nothing is attached. Delayed work alone does not end the call.
  /// Result: false, at once, when nothing was attached: neither work nor a source nor the main queue.
  /// Throws: what delayed or posted work throws. Threads: the loop's own.
  bool runMode(std::string_view mode, double limit);
  /// Runs the default mode again and again until `limit`; returns at once when nothing is attached to it.
  /// Threads: the loop's own.
  void runUntil(double limit);
  /// Runs the work of the mode that is due now, without waiting. Result: whether anything has run.
  /// Throws: what the work throws. Threads: the loop's own.
  bool runDue(std::string_view mode = NSDefaultRunLoopMode);

  /// Runs `closure` once, when `delaySeconds` have passed and the loop runs in the mode. A delay that is zero, negative
  /// or NaN is over at once, but the closure never runs within the call. Due work runs in the order of the due times,
  /// then of the calls; work that is added while due work runs waits for the next pass.
  /// Cost: logarithmic in the delayed work; no allocation for a closure of at most three words but the request's own.
  /// Threads: the loop's own.
  template <class Closure>
  requires std::invocable < std::decay_t<Closure>
  & > void performAfter(double delaySeconds, Closure&& closure, std::string_view mode = NSDefaultRunLoopMode) {
    schedule(delaySeconds, detail::Work(std::forward<Closure>(closure)), mode);
  }

  /// When the next delayed work of the mode is due; empty when there is none. Threads: the loop's own.
  [[nodiscard]] std::optional<double> nextDeadline(std::string_view mode = NSDefaultRunLoopMode);

  /// Posts a closure that is run once on the loop's thread, when the loop runs in the mode; in the order of posting.
  /// Result: false when that thread has ended: the closure has been destroyed, not run. Threads: any.
  template <class Closure>
  requires std::invocable < std::decay_t<Closure>
  & > bool perform(Closure&& closure, std::string_view mode = NSDefaultRunLoopMode) {
    return post(detail::Work(std::forward<Closure>(closure)), mode);
  }
  /// Makes `mode` one of the common modes. Threads: any.
  void addCommonMode(std::string_view mode);
  /// Makes a waiting loop look for work again. Threads: any.
  void wake();
  /// Wakes every run loop of the process, as an installed clock must when it moves. Threads: any.
  static void wakeAll();
  /// Waits until something is posted or the loop is woken, `seconds` at most, whatever the clock of the process says;
  /// returns at once when posted work is pending or the main queue is not empty. Threads: the loop's own.
  void waitForWake(double seconds, std::string_view mode = NSDefaultRunLoopMode);

  /// The object of the loop's thread. Threads: the loop's own; the main loop's on any.
  [[nodiscard]] Strong<NSThread> thread();

 protected:
  RunLoop() = default;
  ~RunLoop() = default;

 private:
  void schedule(double delaySeconds, detail::Work&& work, std::string_view mode);
  bool post(detail::Work&& work, std::string_view mode);
};

}  // namespace platform
}  // namespace havrin
