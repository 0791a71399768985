// Run loops: one per thread, made when its thread first asks. A run loop runs delayed work when it is due and posted
// work when it comes; the main thread's also runs the main queue.
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
// A run loop ends with its thread: work that waits is destroyed there and never run. The main thread's never ends.
//
// Left out: repeating timers (work may arrange itself again), input from file descriptors (host_loop.h is for living
// inside a loop that has them), observers, stopping a loop from outside (let the condition around runMode end).
#pragma once

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/dispatch/work.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/block.h>
#include <HavrinFoundation/platform/object/reference.h>

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace havrin::inline platform {

class DelayedPerforms;
class HostDescriptor;
class NSThread;
class RunLoopMode;

inline constexpr std::string_view NSDefaultRunLoopMode = "havrin.default";
/// Not a mode of its own: what waits in it is run in each common mode.
inline constexpr std::string_view NSRunLoopCommonModes = "havrin.common";

/// What a delayed perform is known by when it is cancelled: three addresses. Its work keeps alive what they point to.
struct PerformKey {
  const void* target = nullptr;
  const void* selector = nullptr;
  const void* argument = nullptr;
};

class HAVRIN_EXPORT RunLoop : public std::enable_shared_from_this<RunLoop> {
 public:
  /// The calling thread's run loop. Other threads that post to it hold it by `shared_from_this`.
  [[nodiscard]] static RunLoop& current();
  /// The main thread's, on any thread.
  [[nodiscard]] static RunLoop& main();

  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;
  ~RunLoop();

  /// Runs what the mode has: delayed work when it is due, posted work, in a common mode of the main thread's loop the
  /// main queue. Waits for more, and returns when a batch of posted work or of the main queue has been run, at `limit`,
  /// or when nothing is attached any more. Delayed work alone does not end the call.
  /// Result: false, at once, when nothing was attached: neither work nor a source nor the main queue.
  /// Throws: what delayed or posted work throws. Threads: the loop's own.
  bool runMode(std::string_view mode, double limit);
  /// Runs the default mode again and again until `limit`; returns at once when nothing is attached to it.
  /// Threads: the loop's own.
  void runUntil(double limit);
  /// Runs what the mode has now, without waiting. Result: whether anything has run. Threads: the loop's own.
  bool runDue(std::string_view mode = NSDefaultRunLoopMode);

  /// Runs `closure` once, when `delaySeconds` have passed and the loop runs in the mode. A delay that is zero, negative
  /// or not a number is over at once, but never within the call. What is due together runs in the order of the due
  /// times, then of the calls; what is arranged while due work runs waits for the next pass.
  /// Threads: the loop's own.
  template <class Closure>
  requires std::invocable < std::decay_t<Closure>
  & > void performAfter(double delaySeconds, Closure&& closure, std::string_view mode = NSDefaultRunLoopMode) {
    performAfterDelay(PerformKey(), delaySeconds, Work(std::forward<Closure>(closure)), mode);
  }
  /// The same for work that can be cancelled under `key`, whose target is not null. Threads: the loop's own.
  void performAfterDelay(const PerformKey& key, double delaySeconds, Work work,
                         std::string_view mode = NSDefaultRunLoopMode);
  /// Moves the only request of the default mode with this target, this selector and no argument to `delaySeconds` from
  /// now, as if it had been cancelled and arranged again.
  /// Result: false, and nothing has changed, when there is none, when another request of the default mode has this
  /// target and selector, or when one of another mode has them and no argument.
  /// Cost: the clock and one look-up; when it moves later, no other request is touched. Threads: the loop's own.
  bool postponePerform(const void* target, const void* selector, double delaySeconds);
  /// Takes away every request, of any mode, with this target, this selector and the same argument, and destroys its
  /// work. Null is only the same as null; of two others that differ `sameArgument` decides.
  /// Cost: constant for each request taken away, on average. Threads: the loop's own.
  void cancelPerforms(const PerformKey& key, BlockView<bool(const void* argument)> sameArgument);
  /// Takes away every request with this target, and destroys its work. Cost: linear in all requests.
  /// Threads: the loop's own.
  void cancelPerforms(const void* target);

  /// When the next delayed work of the mode is due; empty when there is none. Threads: the loop's own.
  [[nodiscard]] std::optional<double> nextDeadline(std::string_view mode = NSDefaultRunLoopMode);

  /// Posts a closure that is run once on the loop's thread, when the loop runs in the mode; in the order of posting.
  /// Result: false when that thread has ended: the closure has been destroyed, not run. Threads: any.
  template <class Closure>
  requires std::invocable < std::decay_t<Closure>
  & > bool perform(Closure&& closure, std::string_view mode = NSDefaultRunLoopMode) {
    return post(Work(std::forward<Closure>(closure)), mode);
  }
  /// Makes `mode` one of the common modes. Threads: any.
  void addCommonMode(std::string_view mode);
  /// Lets the loop look again, if it waits. Threads: any.
  void wake();
  /// Wakes every run loop of the process: for whoever moves the clock. Threads: any.
  static void wakeAll();
  /// Waits until something is posted or the loop is woken, `seconds` at most, whatever the clock of the process says;
  /// returns at once when posted work or the main queue is there. Threads: the loop's own.
  void waitForWake(double seconds, std::string_view mode = NSDefaultRunLoopMode);

  /// The object of the loop's thread. Threads: the loop's own; the main loop's on any.
  [[nodiscard]] Strong<NSThread> thread();

  /// The layer's own: how the main loop calls a foreign event loop (host_loop.h).
  [[nodiscard]] HostDescriptor& hostDescriptor();
  void reportToHost();

 private:
  friend class RunLoopSource;
  enum class Kind { kMain, kThread };
  struct Modes {
    RunLoopMode* named;
    RunLoopMode* common;  // null when the named mode is none of the common ones
  };
  enum Wakefulness : std::uint32_t { kAwake, kAsleep };

  explicit RunLoop(Kind kind);
  static RunLoop& makeForThisThread();
  static void endForThisThread(void* owner);
  void end();

  [[nodiscard]] RunLoopMode& modeNamed(std::string_view name);  // with the lock held
  [[nodiscard]] DelayedPerforms& delayedIn(std::string_view mode);
  [[nodiscard]] Modes modesFor(std::string_view name);
  [[nodiscard]] bool isAttached(const Modes& modes);
  [[nodiscard]] bool hasPosted(const Modes& modes);
  [[nodiscard]] bool runsMainQueue(const Modes& modes) const { return isMain_ && modes.common != nullptr; }

  bool runDelayed(const Modes& modes);
  bool runPosted(const Modes& modes);
  [[nodiscard]] RunLoopMode* modeOfFirst(const Modes& modes);
  [[nodiscard]] std::optional<double> deadlineOf(const Modes& modes);
  void waitUntil(const Modes& modes, double deadline);
  void sleep(const Modes& modes, double seconds);
  bool post(Work&& work, std::string_view mode);
  [[nodiscard]] static double deadlineAfter(double delaySeconds);
  void tellHost(double deadline);

  const bool isMain_;
  std::uint64_t nextRank_ = 0;  // of delayed work, over all modes
  RunLoopMode* defaultMode_;
  std::vector<RunLoopMode*> delayedModes_;  // those that have held delayed work; the loop's thread only

  os_unfair_lock lock_;                              // guards what follows; the loop's thread alone writes `ended_`
  std::vector<std::unique_ptr<RunLoopMode>> modes_;  // only ever added to; the first is what is common
  bool ended_ = false;
  Strong<NSObject> thread_;  // made when it is first asked for

  std::atomic<std::uint32_t> wakefulness_{kAwake};
  std::atomic<HostDescriptor*> host_{nullptr};
};

/// Something outside that a loop waits for: it keeps its mode attached, and its handler runs after a signal.
class HAVRIN_EXPORT RunLoopSource {
 public:
  /// Attaches a source to the calling thread's loop.
  explicit RunLoopSource(Block<void()> handler, std::string_view mode = NSDefaultRunLoopMode);
  /// Detaches it; a signal that has not been handled is dropped. Threads: the loop's own.
  ~RunLoopSource();
  RunLoopSource(const RunLoopSource&) = delete;
  RunLoopSource& operator=(const RunLoopSource&) = delete;

  /// Lets the handler run once, on the loop's thread; signals before it begins count as one. Threads: any.
  void signal();

 private:
  struct State;
  const std::shared_ptr<State> state_;
};

}  // namespace havrin::inline platform
