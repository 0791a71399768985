#include <HavrinFoundation/platform/dispatch/execution_frame.h>

#include <HavrinFoundation/platform/dispatch/main_queue_state.h>

#include <unistd.h>

namespace havrin {
inline namespace platform {
namespace {

constinit thread_local const ExecutionFrame* innermost [[gnu::tls_model("initial-exec")]] = nullptr;

const ExecutionFrame* outermost() {
  static constinit const ExecutionFrame kNoQueue{nullptr, nullptr, nullptr};
  if (gettid() != getpid()) return &kNoQueue;
  static const ExecutionFrame* const kMain = new ExecutionFrame{&MainQueueState::shared(), nullptr, nullptr};
  return kMain;
}

}  // namespace

const ExecutionFrame* ExecutionFrame::current() {
  if (innermost == nullptr) [[unlikely]]
    innermost = outermost();
  return innermost;
}

bool ExecutionFrame::isHeldHere(const QueueState& queue) {
  for (const ExecutionFrame* frame = current(); frame != nullptr; frame = frame->outer) {
    for (const ExecutionFrame* link = frame; link != nullptr; link = link->target) {
      if (link->queue == &queue) return true;
    }
  }
  return false;
}

EnterQueue::EnterQueue(QueueState& queue, const ExecutionFrame* target)
    : frame_{&queue, target, ExecutionFrame::current()} {
  innermost = &frame_;
}

EnterQueue::~EnterQueue() { innermost = frame_.outer; }

bool isMainThread() {
  const ExecutionFrame* frame = ExecutionFrame::current();
  while (frame->outer != nullptr) frame = frame->outer;
  return frame->queue != nullptr;
}

}  // namespace platform
}  // namespace havrin
