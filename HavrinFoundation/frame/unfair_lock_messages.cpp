// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/frame/unfair_lock_messages.h>

#include <HavrinFoundation/platform/object/argument_errors.h>

#include <atomic>

namespace havrin::message {

Strong<UnfairLock> UnfairLock::init() {
  std::atomic_ref(lock_._os_unfair_lock_opaque).store(0, std::memory_order_relaxed);
  return Strong<UnfairLock>(this);
}

void UnfairLock::withLock(BlockView<void()> block) {
  if (!block) throwNullArgument(*this, "withLock:", "block");
  const Strong<UnfairLock> hold(this);
  const UnfairLockGuard guard(lock_);
  const Block<void()> held = block.share();  // released before the lock is freed
  block();
}

os_unfair_lock UnfairLock::lock() { return os_unfair_lock_copy(lock_); }

}  // namespace havrin::message
