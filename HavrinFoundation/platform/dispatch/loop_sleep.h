// SPDX-License-Identifier: Apache-2.0
// How one thread sleeps until there is work for it. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/base/futex.h>

#include <atomic>
#include <concepts>
#include <cstdint>

namespace havrin {
inline namespace platform {

class LoopSleep {
 public:
  /// Sleeps until woken, `seconds` at most; returns at once when `hasWork()`. Threads: the one that sleeps.
  // The thread stores that it sleeps, then looks for work; a caller of wake adds work, then reads that state. The
  // accesses are sequentially consistent, so at least one of the two sees what the other wrote.
  template <std::predicate HasWork>
  void sleep(double seconds, HasWork hasWork) {
    state_.store(kAsleep, std::memory_order_seq_cst);
    if (!hasWork()) futex::wait(state_, kAsleep, seconds);
    state_.store(kAwake, std::memory_order_relaxed);
  }
  /// Ends the sleep, if there is one. Threads: any.
  void wake() {
    if (state_.exchange(kAwake, std::memory_order_seq_cst) == kAsleep) futex::wake(state_, 1);
  }

 private:
  enum State : std::uint32_t { kAwake, kAsleep };

  std::atomic<std::uint32_t> state_{kAwake};
};

}  // namespace platform
}  // namespace havrin
