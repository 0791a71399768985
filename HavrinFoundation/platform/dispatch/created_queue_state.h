// SPDX-License-Identifier: Apache-2.0
// The queues that programs make. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/dispatch/queue_state.h>
#include <HavrinFoundation/platform/dispatch/work_fifo.h>

#include <atomic>

namespace havrin {
inline namespace platform {

/// A queue whose closures run inside its target's closures. It stores them itself and queues *turns* on the target. A
/// serial queue has at most one turn, which runs all closures that are stored; a turn of a concurrent queue runs one.
/// A turn that begins on a queue that is no longer the target is queued on the new target.
class CreatedQueueState final : public QueueState {
 public:
  CreatedQueueState(std::string_view label, dispatch_queue_attr_t attribute, const DispatchQueue& target);
  ~CreatedQueueState() override;

  void append(Work&& work) override;
  bool callAtOnce(BlockView<void()> block) override;
  [[nodiscard]] bool isSerial() const override { return serial_; }
  [[nodiscard]] std::size_t waiting() override;
  [[nodiscard]] DispatchQueue target() override;
  void setTarget(const DispatchQueue& target) override;

 private:
  void queueTurnOn(const DispatchQueue& target);
  void takeTurn();
  void runOne();
  void runBatch();
  void leave();

  const bool serial_;

  os_unfair_lock lock_;
  WorkFifo pending_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));
  DispatchQueue target_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));
  // Serial queues: a turn is queued or running, or a dispatch_sync is inside.
  bool busy_ HAVRIN_THREAD_SAFETY(guarded_by(lock_)) = false;
  WorkFifo batch_;  // serial queues: accessed only by the thread that made the queue busy
  std::atomic<bool> retargeted_{
      false};  // since the present batch began; a late reading only delays the move, so relaxed
};

}  // namespace platform
}  // namespace havrin
