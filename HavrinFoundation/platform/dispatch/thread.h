// SPDX-License-Identifier: Apache-2.0
// Threads as objects: one for each thread, however the thread was started.
//
//   NSThread::currentThread() == NSThread::currentThread()         true
//   NSThread::currentThread()->isMainThread()
//
// Left out: starting, naming and cancelling threads, thread dictionaries (the language has threads of its own).
#pragma once

#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/members.h>

#include <memory>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSThread : public Object<NSThread, NSObject> {
 public:
  /// Of the thread to which `loop` belongs; programs ask currentThread.
  explicit NSThread(RunLoop& loop) : loop_(loop.shared_from_this()) {}

  /// The calling thread; the same object each time.
  [[nodiscard]] static Strong<NSThread> currentThread();
  /// The main thread, on any thread.
  [[nodiscard]] static Strong<NSThread> mainThread();

  /// Whether this is the process's first thread.
  [[nodiscard]] bool isMainThread() const { return loop_.get() == &RunLoop::main(); }
  /// Its run loop; other threads may post to it.
  [[nodiscard]] RunLoop& runLoop() const { return *loop_; }

 private:
  const std::shared_ptr<RunLoop> loop_;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSThread>();

}  // namespace platform
}  // namespace havrin
