// SPDX-License-Identifier: Apache-2.0
// The queues whose closures a thread is running: a chain of frames on its stack. Internal to the layer.
//
// A closure's frame points to the frames of the queues through which its queue ran when it began. Questions about the
// current queue follow that chain, not the queues' present targets. A dispatch_sync starts a new chain.
#pragma once

#include <HavrinFoundation/platform/dispatch/queue_state.h>

namespace havrin {
inline namespace platform {

struct ExecutionFrame {
  QueueState* queue;             // null in the frame of a thread that runs no queue's closure
  const ExecutionFrame* target;  // the frame of the queue through which this one runs, or null
  const ExecutionFrame* outer;   // what the thread was running before, or null

  /// The innermost frame of this thread. The main thread's outermost one is the main queue's.
  static const ExecutionFrame* current() {
    if (innermost == nullptr) [[unlikely]]
      innermost = outermost();
    return innermost;
  }
  /// Whether a closure of `queue` is somewhere on this thread's stack.
  static bool isHeldHere(const QueueState& queue);

 private:
  friend class EnterQueue;

  static const ExecutionFrame* outermost();

  // Null until the thread first asks.
  static constinit thread_local const ExecutionFrame* innermost [[gnu::tls_model("initial-exec")]];
};

/// Marks, for the length of a scope, that this thread runs a closure of `queue`.
class EnterQueue {
 public:
  EnterQueue(QueueState& queue, const ExecutionFrame* target);
  ~EnterQueue();
  EnterQueue(const EnterQueue&) = delete;
  EnterQueue& operator=(const EnterQueue&) = delete;

 private:
  ExecutionFrame frame_;
};

}  // namespace platform
}  // namespace havrin
