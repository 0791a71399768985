// SPDX-License-Identifier: Apache-2.0
// The global queue and the threads behind it. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/dispatch/queue_state.h>
#include <HavrinFoundation/platform/dispatch/work_fifo.h>

#include <atomic>
#include <cstdint>
#include <sys/types.h>
#include <vector>

namespace havrin {
inline namespace platform {

/// Begins closures in the order in which they were queued, on as many threads as there are processors. While these are
/// busy and closures wait, one more thread stands by. When no closure has begun for a moment although a processor is
/// free, the busy threads must be blocked, perhaps by a closure that waits; the thread that stands by then runs one.
/// Threads end after some idle seconds; none is joined.
class WorkerPool final : public QueueState {
 public:
  static WorkerPool& shared();

  void append(Work&& work) override;
  bool callAtOnce(BlockView<void()> block) override;
  [[nodiscard]] bool isSerial() const override { return false; }
  [[nodiscard]] std::size_t waiting() override;
  [[nodiscard]] DispatchQueue target() override { return DispatchQueue(); }

  /// Whether the calling thread is one of the pool's.
  [[nodiscard]] bool isWorker();

 private:
  enum class Turn { kRun, kStandBy, kWait };
  enum class Help { kNone, kWake, kStart };

  WorkerPool();

  void serve();
  Turn takeTurn(Work& work, bool gotUp);
  bool standBy();
  bool waitForWork();
  void getHelp(Help help);

  [[nodiscard]] Help help() HAVRIN_THREAD_SAFETY(requires_capability(lock_));
  [[nodiscard]] std::size_t busy() const HAVRIN_THREAD_SAFETY(requires_capability(lock_)) {
    return threads_.size() + starting_ - idle_ - standingBy_;
  }

  const std::size_t processors_;

  os_unfair_lock lock_;
  WorkFifo pending_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));
  std::uint64_t begun_ HAVRIN_THREAD_SAFETY(guarded_by(lock_)) = 0;     // closures ever taken from `pending_`
  std::vector<pid_t> threads_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));  // those that have started and not ended
  std::size_t starting_ HAVRIN_THREAD_SAFETY(guarded_by(lock_)) = 0;    // those that have not started yet
  std::size_t idle_ HAVRIN_THREAD_SAFETY(guarded_by(lock_)) = 0;        // waiting, and not chosen to wake up
  std::size_t chosen_ HAVRIN_THREAD_SAFETY(guarded_by(lock_)) = 0;      // how many of the waiting threads may wake up
  std::size_t standingBy_ HAVRIN_THREAD_SAFETY(guarded_by(lock_)) = 0;  // none or one
  std::atomic<std::uint32_t> wakes_{0};                                 // the futex word on which idle threads sleep
};

}  // namespace platform
}  // namespace havrin
