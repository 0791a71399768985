// SPDX-License-Identifier: Apache-2.0
// A run loop and the parts that do its work. Internal to the layer: what only the layer calls is here.
#pragma once

#include <HavrinFoundation/platform/dispatch/host_descriptor.h>
#include <HavrinFoundation/platform/dispatch/loop_delays.h>
#include <HavrinFoundation/platform/dispatch/loop_sleep.h>
#include <HavrinFoundation/platform/dispatch/mode_table.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <atomic>
#include <optional>
#include <string_view>
#include <sys/types.h>

namespace havrin {
inline namespace platform {

class RunLoopState final : public RunLoop {
 public:
  enum class Kind { kMain, kThread };

  explicit RunLoopState(Kind kind);
  ~RunLoopState();

  [[nodiscard]] static RunLoopState& current() { return of(RunLoop::current()); }
  [[nodiscard]] static RunLoopState& of(RunLoop& loop) { return static_cast<RunLoopState&>(loop); }

  /// The same as performAfter for work that can be cancelled under `key`, whose target is not null.
  /// Threads: the loop's own, as all of these.
  void performAfterDelay(const PerformKey& key, double delaySeconds, Work work,
                         std::string_view mode = NSDefaultRunLoopMode);
  /// LoopDelays::postpone and cancel. Result of the first: whether the request was moved.
  bool postponePerform(const void* target, const void* selector, double delaySeconds);
  void cancelPerforms(const PerformKey& key, BlockView<bool(const void* argument)> sameArgument) {
    delays.cancel(key, sameArgument);
  }
  void cancelPerforms(const void* target) { delays.cancel(target); }

  /// The descriptor that a foreign event loop watches, made at the first call. Main thread only.
  [[nodiscard]] HostDescriptor& hostDescriptor();
  /// Makes the descriptor readable exactly when there is something to run. Main thread only.
  void reportToHost();

  [[nodiscard]] bool isAttached(const RunLoopModes& modes);
  [[nodiscard]] bool hasPosted(const RunLoopModes& modes);
  bool runPosted(const RunLoopModes& modes);
  void waitUntil(const RunLoopModes& modes, double deadline);
  void sleepFor(const RunLoopModes& modes, double seconds);
  /// Wakes the loop, and the foreign event loop that it lives in.
  void wakeAnywhere();
  void end();

  ModeTable modes;
  LoopDelays delays{modes.defaultMode()};

  /// The system's number of the loop's thread; 0 where diagnosis was off when the loop was made. Threads: any.
  [[nodiscard]] pid_t threadNumber() const { return threadNumber_; }

  /// The object of the loop's thread, made when it is first asked for.
  [[nodiscard]] Strong<NSThread> threadObject();

 private:
  [[nodiscard]] bool runsMainQueue(const RunLoopModes& running) const { return isMain_ && running.common != nullptr; }
  void expectInHost(double deadline);

  const bool isMain_;
  const pid_t threadNumber_;
  LoopSleep sleep_;
  std::atomic<HostDescriptor*> host_{nullptr};
  os_unfair_lock threadLock_;
  Strong<NSObject> thread_ HAVRIN_THREAD_SAFETY(guarded_by(threadLock_));
};

}  // namespace platform
}  // namespace havrin
