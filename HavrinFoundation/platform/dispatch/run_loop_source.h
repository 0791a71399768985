// SPDX-License-Identifier: Apache-2.0
// An event from outside that keeps a run loop waiting, and the handler that runs when it occurs.
//
//   RunLoopSource arrived([&] { read(); });       the calling thread's loop waits, also when it has no work
//   arrived.signal();                             on any thread: read() runs on the loop's thread
#pragma once

#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/block.h>

#include <memory>
#include <string_view>

namespace havrin {
inline namespace platform {

/// A source: it keeps its mode attached, and its handler runs after a signal.
class HAVRIN_EXPORT RunLoopSource {
 public:
  /// Attaches a source to the calling thread's loop.
  explicit RunLoopSource(Block<void()> handler, std::string_view mode = NSDefaultRunLoopMode);
  /// Detaches it; a signal that has not been handled is dropped. Threads: the loop's own.
  ~RunLoopSource();
  RunLoopSource(const RunLoopSource&) = delete;
  RunLoopSource& operator=(const RunLoopSource&) = delete;

  /// Makes the handler run once, on the loop's thread; signals before it begins count as one. Threads: any.
  void signal();

 private:
  struct State;
  const std::shared_ptr<State> state_;
};

}  // namespace platform
}  // namespace havrin
