// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/once.h>

#include <HavrinFoundation/platform/base/futex.h>
#include <HavrinFoundation/platform/base/misuse.h>

#include <climits>
#include <exception>
#include <unistd.h>

namespace havrin {
inline namespace platform {
namespace once {
namespace {

// While the block runs the state is the thread that runs it, with this bit set once another thread waits.
constexpr std::uint32_t kWaiters = 0x8000'0000;

void run(BlockView<void()> block) {
  try {
    block();
  } catch (const std::exception& exception) {
    abortOnMisuse("an exception left the block of dispatch_once", exception.what());
  } catch (...) {
    abortOnMisuse("an exception left the block of dispatch_once", "it is not derived from std::exception");
  }
}

}  // namespace

void runOrWait(dispatch_once_t* predicate, BlockView<void()> block) {
  std::atomic_ref state(predicate->state);
  const auto self = static_cast<std::uint32_t>(gettid());
  std::uint32_t seen = 0;
  // Acquired on failure too: the block may be done already, and what it wrote must be visible here.
  if (state.compare_exchange_strong(seen, self, std::memory_order_acquire, std::memory_order_acquire)) {
    run(block);
    if ((state.exchange(kDone, std::memory_order_release) & kWaiters) != 0) futex::wake(predicate->state, INT_MAX);
    return;
  }
  while (seen != kDone) {
    if ((seen & ~kWaiters) == self) abortOnMisuse("dispatch_once", "called again from inside its own block");
    if ((seen & kWaiters) != 0 || state.compare_exchange_weak(seen, seen | kWaiters, std::memory_order_acquire)) {
      futex::wait(predicate->state, seen | kWaiters);
      seen = state.load(std::memory_order_acquire);
    }
  }
}

}  // namespace once
}  // namespace platform
}  // namespace havrin
