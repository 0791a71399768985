// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/awaited_locks.h>

#include <HavrinFoundation/platform/base/diagnosis.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <string>
#include <sys/types.h>
#include <unistd.h>

namespace havrin {
inline namespace platform {

struct AwaitedLock {
  std::atomic<pid_t> waiter{0};  // 0: the entry is free
  std::atomic<std::uint32_t> holder{0};
  std::atomic<const void*> lock{nullptr};  // written last, and null first: the others are its
};

namespace {

// More waiting threads than this, and threads numbered beyond, are not listed by name.
constinit std::array<AwaitedLock, 64> awaitedLocks;
constinit std::array<std::atomic<pid_t>, 1024> threads;

pid_t threadNumbered(std::uint32_t number) {
  return number < threads.size() ? threads[number].load(std::memory_order_relaxed) : 0;
}

void describeAwaitedLocks(std::string& text) {
  for (const AwaitedLock& entry : awaitedLocks) {
    const void* lock = entry.lock.load(std::memory_order_acquire);
    if (lock == nullptr) continue;
    char address[32];
    std::snprintf(address, sizeof address, "  %p", lock);
    text.append(address).append(": held by ").append(threadText(threadNumbered(entry.holder)));
    text.append(", awaited by ").append(threadText(entry.waiter)).append("\n");
  }
}

}  // namespace

constinit const DiagnosticsSection kAwaitedLocksSection{"awaited locks", describeAwaitedLocks};

void noteLockingThread(std::uint32_t number) {
  if (number < threads.size()) threads[number].store(gettid(), std::memory_order_relaxed);
}

LockWait::LockWait(const void* lock, std::uint32_t holder) {
  if (lock == nullptr) return;
  for (AwaitedLock& entry : awaitedLocks) {
    pid_t free = 0;
    if (!entry.waiter.compare_exchange_strong(free, gettid(), std::memory_order_acq_rel)) continue;
    entry.holder = holder;
    entry.lock.store(lock, std::memory_order_release);
    entry_ = &entry;
    return;
  }
}

LockWait::~LockWait() {
  if (entry_ == nullptr) return;
  entry_->lock.store(nullptr, std::memory_order_release);
  entry_->waiter.store(0, std::memory_order_release);
}

}  // namespace platform
}  // namespace havrin
