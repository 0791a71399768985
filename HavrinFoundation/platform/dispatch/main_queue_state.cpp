// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/main_queue_state.h>

#include <HavrinFoundation/platform/base/spin.h>
#include <HavrinFoundation/platform/dispatch/execution_frame.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>

namespace havrin {
inline namespace platform {

MainQueueState::MainQueueState() : QueueState("main", Lifetime::kProcess) {}

MainQueueState& MainQueueState::shared() {
  static MainQueueState& queue = *new MainQueueState;
  return queue;
}

void MainQueueState::append(Work&& work) {
  bool first = false;
  {
    UnfairLockGuard guard(lock_);
    first = pending_.empty();
    pending_.push(std::move(work));
  }
  // One wake-up is enough: the loop runs the whole queue.
  if (first) RunLoop::main().wake();
}

std::size_t MainQueueState::waiting() {
  UnfairLockGuard guard(lock_);
  return pending_.size();
}

bool MainQueueState::canDrain() {
  if (draining_) return false;
  UnfairLockGuard guard(lock_);
  return !pending_.empty();
}

// A loop that takes each closure as it comes meets its posters at the lock every time, and both wait for its memory.
// After a small batch it leaves them a moment to themselves. Once nothing was found, there is nobody to wait for.
void MainQueueState::gather() const {
  constexpr std::size_t kSmall = 32;
  if (lastBatch_ == 0 || lastBatch_ >= kSmall) return;
  pauseProcessor();
}

bool MainQueueState::drain() {
  if (draining_) return false;
  gather();
  {
    UnfairLockGuard guard(lock_);
    lastBatch_ = pending_.size();
    if (pending_.empty()) return false;
    pending_.swap(batch_);
  }
  draining_ = true;
  EnterQueue frame(*this, nullptr);
  while (!batch_.empty()) runQueued(batch_.pop());
  draining_ = false;
  return true;
}

}  // namespace platform
}  // namespace havrin
