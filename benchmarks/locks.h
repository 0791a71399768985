// SPDX-License-Identifier: Apache-2.0
// Locks as the benchmarks of locks share them.
#pragma once

#include <HavrinFoundation/platform/base/unfair_lock_word.h>

#include <absl/synchronization/mutex.h>
#include <benchmark/benchmark.h>

struct Word {
  havrin::os_unfair_lock word;
  void lock() { os_unfair_lock_lock(&word); }
  void unlock() { os_unfair_lock_unlock(&word); }
};

struct AbseilMutex {
  absl::Mutex mutex;
  void lock() { mutex.Lock(); }
  void unlock() { mutex.Unlock(); }
};

/// Locks and unlocks what nobody else wants.
template <class Lock>
void pair(benchmark::State& state) {
  static Lock lock;
  for (auto _ : state) {
    lock.lock();
    benchmark::ClobberMemory();
    lock.unlock();
  }
}
