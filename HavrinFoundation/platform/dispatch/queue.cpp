// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/queue.h>

#include <HavrinFoundation/platform/base/futex.h>
#include <HavrinFoundation/platform/base/misuse.h>
#include <HavrinFoundation/platform/dispatch/created_queue_state.h>
#include <HavrinFoundation/platform/dispatch/execution_frame.h>
#include <HavrinFoundation/platform/dispatch/main_queue_state.h>
#include <HavrinFoundation/platform/dispatch/worker_pool.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <exception>

namespace havrin {
inline namespace platform {
namespace {

QueueState& stateOf(const DispatchQueue& queue) {
  if (!queue) throw NSException(NSInvalidArgumentException, "the queue is null");
  return QueueState::of(queue);
}

// A dispatch_sync that has to wait for its turn. The thread that reaches it holds the queue and waits while the caller
// runs the block; only the main thread runs the block itself.
class WaitingCall {
 public:
  WaitingCall(QueueState& queue, BlockView<void()> block) : queue_(queue), block_(block) {}

  /// On the caller's thread, once the call is queued. Throws: what the block throws.
  void wait() {
    while (stage_.load(std::memory_order_acquire) == kWaiting) futex::wait(stage_, kWaiting);
    if (stage_.load(std::memory_order_acquire) == kYourTurn) runHere();
    if (thrown_) std::rethrow_exception(thrown_);
  }

  /// On the queue, when it comes to this call.
  void begin() {
    if (isMainThread()) {
      run();
      finish(stage_, kDone);
      return;
    }
    std::atomic<std::uint32_t> finished{0};
    finished_ = &finished;
    holder_ = ExecutionFrame::current();
    finish(stage_, kYourTurn);
    while (finished.load(std::memory_order_acquire) == 0) futex::wait(finished, 0);
  }

 private:
  enum Stage : std::uint32_t { kWaiting, kYourTurn, kDone };

  void run() {
    try {
      block_();
    } catch (...) {
      thrown_ = std::current_exception();
    }
  }

  void runHere() {
    {
      EnterQueue frame(queue_, holder_->target);
      run();
    }
    finish(*finished_, 1);
  }

  // Once it has seen the value, the other thread may return and the word be gone. A wake-up of an address on which no
  // thread sleeps does no harm.
  static void finish(std::atomic<std::uint32_t>& word, std::uint32_t value) {
    word.store(value, std::memory_order_release);
    futex::wake(word, 1);
  }

  QueueState& queue_;
  const BlockView<void()> block_;
  std::exception_ptr thrown_;
  const ExecutionFrame* holder_ = nullptr;
  std::atomic<std::uint32_t>* finished_ = nullptr;
  std::atomic<std::uint32_t> stage_{kWaiting};
};

void refuseQueueHeldHere(const DispatchQueue& queue) {
  for (DispatchQueue each = queue; each; each = QueueState::of(each).target()) {
    QueueState& state = QueueState::of(each);
    const bool mainOnMain = &state == &MainQueueState::shared() && isMainThread();
    if (mainOnMain || (state.isSerial() && ExecutionFrame::isHeldHere(state))) {
      abortOnMisuse("dispatch_sync", "deadlock: the caller already runs on the queue " + std::string(state.label()));
    }
  }
}

}  // namespace

std::string_view DispatchQueue::label() const { return stateOf(*this).label(); }

void DispatchQueue::destroy(detail::QueueOwners* owners) { delete static_cast<QueueState*>(owners); }

DispatchQueue dispatch_get_main_queue() { return MainQueueState::shared().reference(); }

DispatchQueue dispatch_get_global_queue() { return WorkerPool::shared().reference(); }

DispatchQueue dispatch_queue_create(std::string_view label, dispatch_queue_attr_t attribute,
                                    const DispatchQueue& target) {
  return QueueState::adopt(new CreatedQueueState(label, attribute, target));
}

void dispatch_set_target_queue(const DispatchQueue& queue, const DispatchQueue& target) {
  QueueState& state = stateOf(queue);
  for (DispatchQueue each = target; each; each = QueueState::of(each).target()) {
    if (each == queue) abortOnMisuse("dispatch_set_target_queue", "the target queue leads back to this queue");
  }
  state.setTarget(target);
}

}  // namespace platform

void detail::queueWork(const DispatchQueue& queue, Work&& work) { stateOf(queue).append(std::move(work)); }

inline namespace platform {

void dispatch_sync(const DispatchQueue& queue, BlockView<void()> block) {
  QueueState& state = stateOf(queue);
  if (!block) throwNullBlock();
  if (state.callAtOnce(block)) return;

  refuseQueueHeldHere(queue);
  WaitingCall call(state, block);
  state.append(Work([&call] { call.begin(); }));
  call.wait();
}

void* dispatch_get_specific(const void* key) {
  for (const ExecutionFrame* frame = ExecutionFrame::current(); frame != nullptr; frame = frame->target) {
    if (frame->queue == nullptr) return nullptr;
    if (void* context = frame->queue->specific(key)) return context;
  }
  return nullptr;
}

void* dispatch_queue_get_specific(const DispatchQueue& queue, const void* key) { return stateOf(queue).specific(key); }

void dispatch_queue_set_specific(const DispatchQueue& queue, const void* key, void* context,
                                 void (*destructor)(void*)) {
  stateOf(queue).setSpecific(key, context, destructor);
}

}  // namespace platform
}  // namespace havrin
