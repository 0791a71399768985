// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/execution_frame.h>

#include <HavrinFoundation/platform/dispatch/main_queue_state.h>

#include <unistd.h>

namespace havrin {
inline namespace platform {

constinit thread_local const ExecutionFrame* ExecutionFrame::innermost [[gnu::tls_model("initial-exec")]] = nullptr;

const ExecutionFrame* ExecutionFrame::outermost() {
  static constinit const ExecutionFrame kNoQueue{nullptr, nullptr, nullptr};
  if (gettid() != getpid()) return &kNoQueue;
  static const ExecutionFrame* const kMain = new ExecutionFrame{&MainQueueState::shared(), nullptr, nullptr};
  return kMain;
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
  ExecutionFrame::innermost = &frame_;
}

EnterQueue::~EnterQueue() { ExecutionFrame::innermost = frame_.outer; }

bool isMainThread() {
  const ExecutionFrame* frame = ExecutionFrame::current();
  while (frame->outer != nullptr) frame = frame->outer;
  return frame->queue != nullptr;
}

}  // namespace platform
}  // namespace havrin
