// The queues that programs make. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/dispatch/queue_state.h>
#include <HavrinFoundation/platform/dispatch/work_fifo.h>

#include <atomic>

namespace havrin {
inline namespace platform {

/// A queue whose closures run inside its target's. It keeps them itself and queues *turns* on the target: a turn of a
/// serial queue runs all that is there, and there is never more than one; a turn of a concurrent queue runs one.
/// A turn that finds itself on a queue that is no longer the target goes on to the new one.
class CreatedQueueState final : public QueueState {
 public:
  CreatedQueueState(std::string_view label, dispatch_queue_attr_t attribute, const DispatchQueue& target);

  void append(Work&& work) override;
  bool callAtOnce(BlockView<void()> block) override;
  [[nodiscard]] bool isSerial() const override { return serial_; }
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
  WorkFifo batch_;                       // serial queues: belongs to whoever made the queue busy
  std::atomic<bool> retargeted_{false};  // since the present batch was begun
};

}  // namespace platform
}  // namespace havrin
