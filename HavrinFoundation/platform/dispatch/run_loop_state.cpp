// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/run_loop_state.h>

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/dispatch/loop_diagnosis.h>
#include <HavrinFoundation/platform/dispatch/main_queue_state.h>
#include <HavrinFoundation/platform/dispatch/thread.h>

#include <limits>
#include <utility>

namespace havrin {
inline namespace platform {

void RunLoopState::performAfterDelay(const PerformKey& key, double delaySeconds, Work work, std::string_view mode) {
  if (modes.ended()) return;
  if (diagnosing()) diagnoseDelayed(key);
  RunLoopMode& named = mode == NSDefaultRunLoopMode ? modes.defaultMode() : *modes.modesFor(mode).named;
  expectInHost(delays.schedule(key, delaySeconds, std::move(work), named));
}

bool RunLoopState::postponePerform(const void* target, const void* selector, double delaySeconds) {
  if (modes.ended()) return false;
  const std::optional<double> deadline = delays.postpone(target, selector, delaySeconds);
  if (deadline) expectInHost(*deadline);
  return deadline.has_value();
}

bool RunLoopState::isAttached(const RunLoopModes& running) {
  if (runsMainQueue(running) && !MainQueueState::shared().isDraining()) return true;
  return modes.isAttached(running);
}

bool RunLoopState::hasPosted(const RunLoopModes& running) {
  if (runsMainQueue(running) && MainQueueState::shared().canDrain()) return true;
  return modes.hasPosted(running);
}

bool RunLoopState::runPosted(const RunLoopModes& running) {
  const bool ran = modes.runPosted(running);
  return (runsMainQueue(running) && MainQueueState::shared().drain()) || ran;
}

void RunLoopState::waitUntil(const RunLoopModes& running, double deadline) {
  ClockSource* clock = installedClockSource();
  if (clock == nullptr) {
    sleepFor(running, deadline - monotonicSeconds());
  } else if (hasPosted(running) || clock->passTimeTo(deadline)) {
    return;
  } else {
    sleepFor(running, std::numeric_limits<double>::infinity());
  }
}

void RunLoopState::sleepFor(const RunLoopModes& running, double seconds) {
  sleep_.sleep(seconds, [&] { return hasPosted(running); });
}

void RunLoopState::wakeAnywhere() {
  sleep_.wake();
  // In one order with hostDescriptor(): either this sees the descriptor, or that sees what was posted before this.
  if (HostDescriptor* host = host_.load(std::memory_order_seq_cst)) host->signal();
}

HostDescriptor& RunLoopState::hostDescriptor() {
  // Relaxed: only the loop's own thread makes it.
  if (HostDescriptor* made = host_.load(std::memory_order_relaxed)) return *made;
  auto* host = new HostDescriptor;
  host_.store(host, std::memory_order_seq_cst);
  // For what was posted before a poster could see the descriptor.
  if (hasPosted(modes.modesFor(NSDefaultRunLoopMode))) host->signal();
  if (const std::optional<double> deadline = nextDeadline()) host->expect(*deadline);
  return *host;
}

void RunLoopState::reportToHost() {
  HostDescriptor& host = hostDescriptor();
  host.expectOnly(nextDeadline());
  if (hasPosted(modes.modesFor(NSDefaultRunLoopMode))) host.signal();
}

void RunLoopState::expectInHost(double deadline) {
  if (HostDescriptor* host = host_.load(std::memory_order_relaxed)) host->expect(deadline);
}

Strong<NSThread> RunLoopState::threadObject() {
  {
    UnfairLockGuard guard(threadLock_);
    if (thread_) return Strong<NSThread>(static_cast<NSThread*>(thread_.get()));
  }
  Strong<NSThread> made = make<NSThread>(*this);  // may build its class, so without the lock
  if (modes.ended()) return made;
  UnfairLockGuard guard(threadLock_);
  if (!thread_) thread_ = made;
  return Strong<NSThread>(static_cast<NSThread*>(thread_.get()));
}

// Destructors that run here may add and post more work, which is refused and destroyed at once.
void RunLoopState::end() {
  if (diagnosing()) diagnoseEnd(delays);
  delays.end();
  const ModeTable::All ending = modes.end();
  Strong<NSObject> thread;
  UnfairLockGuard guard(threadLock_);
  std::swap(thread, thread_);
}

}  // namespace platform
}  // namespace havrin
