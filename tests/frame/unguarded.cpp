// SPDX-License-Identifier: Apache-2.0
// Code that clang's thread-safety analysis must reject: access without the lock, and a lock never released.
#include <HavrinFoundation/frame/unfair_lock.h>

using namespace havrin;

struct Counter {
  UnfairLock lock;
  int count HAVRIN_THREAD_SAFETY(guarded_by(lock)) = 0;

  int next() {
#if HAVRIN_CASE != 1
    lock.lock();
#endif
    const int result = ++count;
#if HAVRIN_CASE != 2
    lock.unlock();
#endif
    return result;
  }
};

struct Total {
  os_unfair_lock word;
  int sum HAVRIN_THREAD_SAFETY(guarded_by(word)) = 0;

  void add(int more) {
#if HAVRIN_CASE != 3
    const UnfairLockGuard guard(word);
#endif
    sum += more;
  }
};
