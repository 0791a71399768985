// SPDX-License-Identifier: Apache-2.0
// A lock for short critical sections: four bytes, unfair, not recursive. The message form is a class of its own,
// message::UnfairLock, and shares nothing with this one. The box that guards a value is locked.h.
//
//   UnfairLock lock;
//   int seen = lock.withLock([&] { return ++counter; });    the closure's result, and the lock is free again
//   lock.tryLock()                                          true: held now, until lock.unlock()
//
// A thread that takes a lock it already holds, or frees one it does not hold, ends the process with one line.
#pragma once

#include <HavrinFoundation/platform/base/unfair_lock_word.h>

#include <concepts>
#include <utility>

namespace havrin {

class HAVRIN_THREAD_SAFETY(capability("mutex")) UnfairLock {
 public:
  /// A free lock. Throws: std::bad_alloc when there is no memory for the lock's cell.
  UnfairLock() : cell_(new os_unfair_lock) {}
  ~UnfairLock() { delete cell_; }
  UnfairLock(const UnfairLock&) = delete;
  UnfairLock& operator=(const UnfairLock&) = delete;

  /// Whether the lock was free and is now the caller's. Returns at once; false also for the thread that holds it.
  [[nodiscard]] bool tryLock() HAVRIN_THREAD_SAFETY(try_acquire_capability(true), no_thread_safety_analysis) {
    return os_unfair_lock_trylock(cell_);
  }
  /// Waits without limit until the lock is free, then takes it.
  void lock() HAVRIN_THREAD_SAFETY(acquire_capability(), no_thread_safety_analysis) { os_unfair_lock_lock(cell_); }
  /// Frees the lock; only the thread that took it may.
  void unlock() HAVRIN_THREAD_SAFETY(release_capability(), no_thread_safety_analysis) { os_unfair_lock_unlock(cell_); }

  /// The closure's result, by value; it is called once, on the calling thread, with the lock held.
  /// Throws: what the closure throws, unchanged, after the lock has been freed.
  template <std::invocable Closure>
  auto withLock(Closure&& closure) {
    UnfairLockGuard guard(*cell_);
    return std::forward<Closure>(closure)();
  }

 private:
  template <typename Type>
  friend class Locked;

  // A cell of its own, so that the word's address does not depend on where the lock object lives.
  os_unfair_lock* const cell_;
};

}  // namespace havrin
