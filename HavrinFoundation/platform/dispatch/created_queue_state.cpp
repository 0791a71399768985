// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/created_queue_state.h>

#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/dispatch/execution_frame.h>
#include <HavrinFoundation/platform/dispatch/main_queue_state.h>
#include <HavrinFoundation/platform/dispatch/worker_pool.h>

#include <string>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {
namespace {

DispatchQueue orGlobal(const DispatchQueue& target) { return target ? target : dispatch_get_global_queue(); }

// The queues that were made under diagnosis.
struct QueueRegistry {
  os_unfair_lock lock;
  std::vector<CreatedQueueState*> queues HAVRIN_THREAD_SAFETY(guarded_by(lock));

  static QueueRegistry& shared() {
    static QueueRegistry& registry = *new QueueRegistry;
    return registry;
  }
};

void describeQueue(std::string& text, QueueState& queue) {
  text.append("  ").append(queue.label()).append(": ");
  text.append(std::to_string(queue.waiting())).append(" waiting\n");
}

void describeQueues(std::string& text) {
  describeQueue(text, MainQueueState::shared());
  describeQueue(text, WorkerPool::shared());
  QueueRegistry& registry = QueueRegistry::shared();
  UnfairLockGuard guard(registry.lock);
  for (CreatedQueueState* queue : registry.queues) describeQueue(text, *queue);
}

}  // namespace

extern const DiagnosticsSection kQueuesSection;
constinit const DiagnosticsSection kQueuesSection{"queues", describeQueues};

CreatedQueueState::CreatedQueueState(std::string_view label, dispatch_queue_attr_t attribute,
                                     const DispatchQueue& target)
    : QueueState(label, Lifetime::kCounted), serial_(attribute == DISPATCH_QUEUE_SERIAL), target_(orGlobal(target)) {
  if (!diagnosing()) return;
  QueueRegistry& registry = QueueRegistry::shared();
  UnfairLockGuard guard(registry.lock);
  registry.queues.push_back(this);
}

CreatedQueueState::~CreatedQueueState() {
  if (!diagnosing()) return;
  QueueRegistry& registry = QueueRegistry::shared();
  UnfairLockGuard guard(registry.lock);
  std::erase(registry.queues, this);
}

DispatchQueue CreatedQueueState::target() {
  UnfairLockGuard guard(lock_);
  return target_;
}

std::size_t CreatedQueueState::waiting() {
  UnfairLockGuard guard(lock_);
  return pending_.size();
}

void CreatedQueueState::setTarget(const DispatchQueue& target) {
  DispatchQueue replaced = orGlobal(target);
  UnfairLockGuard guard(lock_);
  std::swap(target_, replaced);
  retargeted_.store(true, std::memory_order_relaxed);  // only ends a batch early: target_ itself is read under the lock
}

void CreatedQueueState::append(Work&& work) {
  DispatchQueue target;
  {
    UnfairLockGuard guard(lock_);
    pending_.push(std::move(work));
    if (serial_ && std::exchange(busy_, true)) return;
    target = target_;
  }
  queueTurnOn(target);
}

void CreatedQueueState::queueTurnOn(const DispatchQueue& target) {
  of(target).append(Work([self = reference()] { static_cast<CreatedQueueState&>(of(self)).takeTurn(); }));
}

void CreatedQueueState::takeTurn() {
  const ExecutionFrame* below = ExecutionFrame::current();
  DispatchQueue target;
  {
    UnfairLockGuard guard(lock_);
    target = target_;
    retargeted_.store(false, std::memory_order_relaxed);
  }
  // The target was changed after this turn was queued on the former one.
  if (&of(target) != below->queue) {
    queueTurnOn(target);
    return;
  }
  EnterQueue frame(*this, below);
  serial_ ? runBatch() : runOne();
}

void CreatedQueueState::runOne() {
  Work work;
  {
    UnfairLockGuard guard(lock_);
    work = pending_.pop();
  }
  runQueued(std::move(work));
}

// What is queued in the meantime waits for the next turn, so that the queues of one target take turns.
void CreatedQueueState::runBatch() {
  if (batch_.empty()) {
    UnfairLockGuard guard(lock_);
    batch_.swap(pending_);
  }
  while (!batch_.empty()) {
    runQueued(batch_.pop());
    if (retargeted_.load(std::memory_order_relaxed)) break;
  }
  leave();
}

// Gives a serial queue up, or queues its next turn when closures are left.
void CreatedQueueState::leave() {
  DispatchQueue target;
  {
    UnfairLockGuard guard(lock_);
    if (batch_.empty() && pending_.empty()) {
      busy_ = false;
      return;
    }
    target = target_;
  }
  queueTurnOn(target);
}

bool CreatedQueueState::callAtOnce(BlockView<void()> block) {
  DispatchQueue target;
  {
    UnfairLockGuard guard(lock_);
    if (serial_ && std::exchange(busy_, true)) return false;
    target = target_;
  }
  struct Leave {  // also when the block throws
    CreatedQueueState* serial;
    ~Leave() {
      if (serial != nullptr) serial->leave();
    }
  } const leaveAfterwards{serial_ ? this : nullptr};
  return of(target).callAtOnce([&] {
    EnterQueue frame(*this, ExecutionFrame::current());
    block();
  });
}

}  // namespace platform
}  // namespace havrin
