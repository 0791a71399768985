// SPDX-License-Identifier: Apache-2.0
// The main queue. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/dispatch/queue_state.h>
#include <HavrinFoundation/platform/dispatch/work_fifo.h>

namespace havrin {
inline namespace platform {

class MainQueueState final : public QueueState {
 public:
  static MainQueueState& shared();

  void append(Work&& work) override;
  bool callAtOnce(BlockView<void()>) override { return false; }
  [[nodiscard]] bool isSerial() const override { return true; }
  [[nodiscard]] std::size_t waiting() override;
  [[nodiscard]] DispatchQueue target() override { return DispatchQueue(); }

  /// Whether one of the queue's closures is running. Main thread only.
  [[nodiscard]] bool isDraining() const { return draining_; }
  /// Whether drain would run something now. Main thread only.
  [[nodiscard]] bool canDrain();
  /// Runs what was queued before the call; what is queued meanwhile waits for the next one. Main thread only.
  /// Result: whether anything has run. Nothing runs when called from inside one of the queue's own closures.
  bool drain();

 private:
  MainQueueState();

  void gather() const;

  // What posters write, and what only the loop's thread does, on cache lines of their own.
  alignas(64) os_unfair_lock lock_;
  WorkFifo pending_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));
  alignas(64) WorkFifo batch_;
  std::size_t lastBatch_ = 0;  // how many closures the last drain found
  bool draining_ = false;
};

}  // namespace platform
}  // namespace havrin
