// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/unfair_lock_word.h>

#include <HavrinFoundation/platform/base/awaited_locks.h>
#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/base/futex.h>
#include <HavrinFoundation/platform/base/misuse.h>
#include <HavrinFoundation/platform/base/spin.h>

namespace havrin {
inline namespace platform {
namespace unfair_lock_word {

constinit thread_local std::uint32_t thisThread [[gnu::tls_model("initial-exec")]] = 0;

namespace {

// The word is the owner's number; this bit is set while a thread sleeps, or may sleep, on it.
constexpr std::uint32_t kWaiters = 0x8000'0000;

// Eights of pauses before each look at a lock that is held. Each look takes the word's cache line from the thread that works
// under the lock, so they grow rare; together they take as long as a sleep and a wake-up would, some 15 us at most.
constexpr int kPauses[] = {1, 3, 9, 27};

constinit std::atomic<std::uint32_t> lastNumber{0};

// A loop, since 0 means a free lock and comes up again after 2^31 threads.
std::uint32_t numberOfThisThread() {
  if (thisThread != 0) return thisThread;
  while (thisThread == 0) thisThread = (lastNumber.fetch_add(1, std::memory_order_relaxed) + 1) & ~kWaiters;
  if (diagnosing()) noteLockingThread(thisThread);
  return thisThread;
}

// Gives up early when another thread sleeps already: to spin beside a sleeper only takes the lock from it.
bool takeWhileSpinning(std::atomic_ref<std::uint32_t> word, std::uint32_t self) {
  for (const int pauses : kPauses) {
    for (int i = 0; i < pauses; ++i) pauseProcessor();
    std::uint32_t seen = word.load(std::memory_order_relaxed);
    if (seen == 0) {
      if (word.compare_exchange_strong(seen, self, std::memory_order_acquire, std::memory_order_relaxed)) return true;
    }
    if ((seen & kWaiters) != 0) return false;
  }
  return false;
}

}  // namespace

void lockSlowly(os_unfair_lock* lock) {
  const std::uint32_t self = numberOfThisThread();
  std::atomic_ref word(lock->_os_unfair_lock_opaque);
  // Relaxed: if the word is this thread's number, this thread wrote it.
  if ((word.load(std::memory_order_relaxed) & ~kWaiters) == self) {
    abortOnMisuse("os_unfair_lock", "locked again by the thread that holds it");
  }
  if (takeWhileSpinning(word, self)) return;

  // Once this thread has slept, others may sleep beside it and the waker has cleared their bit: it takes the lock with
  // the bit set, so that its unlock wakes the next one.
  std::uint32_t mark = self;
  for (;;) {
    std::uint32_t seen = word.load(std::memory_order_relaxed);
    if (seen == 0) {
      if (word.compare_exchange_weak(seen, mark, std::memory_order_acquire, std::memory_order_relaxed)) return;
      continue;
    }
    if ((seen & kWaiters) == 0 &&
        !word.compare_exchange_weak(seen, seen | kWaiters, std::memory_order_relaxed, std::memory_order_relaxed)) {
      continue;
    }
    const LockWait listed(diagnosing() ? lock : nullptr, seen & ~kWaiters);
    futex::wait(lock->_os_unfair_lock_opaque, seen | kWaiters);
    mark = self | kWaiters;
  }
}

bool tryLockSlowly(os_unfair_lock* lock) { return take(lock, numberOfThisThread()); }

// The word is not simply this thread's number: threads wait, or the unlock is a mistake.
void unlockSlowly(os_unfair_lock* lock) {
  std::atomic_ref word(lock->_os_unfair_lock_opaque);
  const std::uint32_t seen = word.load(std::memory_order_relaxed);
  if (seen == 0) abortOnMisuse("os_unfair_lock", "unlocked while free");
  if ((seen & ~kWaiters) != thisThread) {
    abortOnMisuse("os_unfair_lock", "unlocked by a thread that does not hold it");
  }
  word.store(0, std::memory_order_release);
  futex::wake(lock->_os_unfair_lock_opaque, 1);
}

}  // namespace unfair_lock_word
}  // namespace platform
}  // namespace havrin
