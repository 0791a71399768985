// SPDX-License-Identifier: Apache-2.0
// A lock in one 32-bit word that knows its owner. The typed lock is frame/unfair_lock.h, the box frame/locked.h.
//
//   os_unfair_lock word{};                          free
//   os_unfair_lock_lock(&word);                     held by this thread
//   os_unfair_lock_trylock(&word)                   false: not even its holder takes it twice
//   os_unfair_lock_unlock(&word);                   free again
//
// Unfair: a thread that finds the lock free takes it, even before threads that have waited longer.
// A held word must not be moved, nor destroyed while a thread waits for it; it does not work across processes.
// The holder is known by a number of its own and not by the system's thread number: it is never given to a second
// thread (before 2^31 threads have taken a lock), and a forked child's thread still owns what it held.
//
// Left out: the recursive and the priority-inheriting variants, asserting the owner, waiting with a limit.
#pragma once

#include <HavrinFoundation/platform/base/lock_annotations.h>
#include <HavrinFoundation/platform/export.h>

#include <atomic>
#include <cstdint>

namespace havrin {
inline namespace platform {

/// The lock word: 0 when free. A copy of a held word is not zero, and must not be used as a lock.
struct HAVRIN_THREAD_SAFETY(capability("mutex")) os_unfair_lock {
  std::uint32_t _os_unfair_lock_opaque = 0;
};

namespace unfair_lock_word {

/// This thread's number, 0 until it first takes a lock the slow way.
HAVRIN_EXPORT extern constinit thread_local std::uint32_t thisThread [[gnu::tls_model("initial-exec")]];

/// Waits for the lock, after the one quick attempt has failed; aborts when this thread holds it already.
HAVRIN_EXPORT void lockSlowly(os_unfair_lock* lock);
[[nodiscard]] HAVRIN_EXPORT bool tryLockSlowly(os_unfair_lock* lock);
/// Frees the lock and wakes a waiter; aborts when this thread does not hold it.
HAVRIN_EXPORT void unlockSlowly(os_unfair_lock* lock);

// Acquires what the release of the last unlock published; a failed attempt orders nothing.
inline bool take(os_unfair_lock* lock, std::uint32_t thread) {
  std::uint32_t expected = 0;
  return std::atomic_ref(lock->_os_unfair_lock_opaque)
      .compare_exchange_strong(expected, thread, std::memory_order_acquire, std::memory_order_relaxed);
}

}  // namespace unfair_lock_word

/// Waits until the lock is free and takes it. Aborts with one line when the calling thread holds it already.
/// Cost: one compare-and-exchange when free; else a short spin, then sleep.
inline void os_unfair_lock_lock(os_unfair_lock* lock)
    HAVRIN_THREAD_SAFETY(acquire_capability(*lock), no_thread_safety_analysis) {
  lock_annotations::beforeLock(lock);
  const std::uint32_t thread = unfair_lock_word::thisThread;
  if (thread == 0 || !unfair_lock_word::take(lock, thread)) [[unlikely]]
    unfair_lock_word::lockSlowly(lock);
  lock_annotations::afterLock(lock);
}

/// Whether the lock was free and is now the calling thread's. Never waits; false also for the thread that holds it.
[[nodiscard]] inline bool os_unfair_lock_trylock(os_unfair_lock* lock)
    HAVRIN_THREAD_SAFETY(try_acquire_capability(true, *lock), no_thread_safety_analysis) {
  lock_annotations::beforeTryLock(lock);
  const std::uint32_t thread = unfair_lock_word::thisThread;
  const bool taken = thread == 0 ? unfair_lock_word::tryLockSlowly(lock) : unfair_lock_word::take(lock, thread);
  lock_annotations::afterTryLock(lock, taken);
  return taken;
}

/// Frees the lock. Aborts with one line when the calling thread does not hold it.
inline void os_unfair_lock_unlock(os_unfair_lock* lock)
    HAVRIN_THREAD_SAFETY(release_capability(*lock), no_thread_safety_analysis) {
  lock_annotations::beforeUnlock(lock);
  std::uint32_t thread = unfair_lock_word::thisThread;
  if (thread == 0 || !std::atomic_ref(lock->_os_unfair_lock_opaque)
                          .compare_exchange_strong(thread, 0, std::memory_order_release, std::memory_order_relaxed))
      [[unlikely]] {
    unfair_lock_word::unlockSlowly(lock);
  }
  lock_annotations::afterUnlock(lock);
}

/// A copy of the word as it is now, read in one piece: 0 when free.
[[nodiscard]] inline os_unfair_lock os_unfair_lock_copy(os_unfair_lock& lock) {
  return {std::atomic_ref(lock._os_unfair_lock_opaque).load(std::memory_order_relaxed)};
}

/// Holds a lock word for the length of a scope.
class HAVRIN_THREAD_SAFETY(scoped_lockable) UnfairLockGuard {
 public:
  explicit UnfairLockGuard(os_unfair_lock& lock) HAVRIN_THREAD_SAFETY(acquire_capability(lock)) : lock_(lock) {
    os_unfair_lock_lock(&lock_);
  }
  ~UnfairLockGuard() HAVRIN_THREAD_SAFETY(release_capability()) { os_unfair_lock_unlock(&lock_); }
  UnfairLockGuard(const UnfairLockGuard&) = delete;
  UnfairLockGuard& operator=(const UnfairLockGuard&) = delete;

 private:
  os_unfair_lock& lock_;
};

}  // namespace platform
}  // namespace havrin
