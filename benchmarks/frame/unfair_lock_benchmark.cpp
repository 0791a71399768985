// SPDX-License-Identifier: Apache-2.0
// The unfair lock and the locked box beside other locks. "pair" is lock and unlock without contention; "hot" is two
// threads that do nothing else; "busy" works 28 ns inside and 112 ns outside the lock, on two threads and on four.
#include "benchmarks/locks.h"
#include <HavrinFoundation/frame/locked.h>
#include <HavrinFoundation/frame/unfair_lock.h>

#include <QMutex>
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <pthread.h>
#include <thread>

namespace {

using namespace havrin;

// Some libraries leave the atomics out while the process has one thread, which no application does for long.
const bool hasSecondThread = [] {
  std::thread([] { pthread_exit(nullptr); }).detach();
  std::thread([] {
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
  }).detach();
  return true;
}();

// The shortest lock on the language's own waiting: no owner, no recursion check.
struct AtomicWait {
  std::atomic<std::uint32_t> state{0};
  void lock() {
    std::uint32_t free = 0;
    if (state.compare_exchange_strong(free, 1, std::memory_order_acquire)) return;
    while (state.exchange(2, std::memory_order_acquire) != 0) state.wait(2, std::memory_order_relaxed);
  }
  void unlock() {
    if (state.exchange(0, std::memory_order_release) == 2) state.notify_one();
  }
};

struct SpinLock {
  pthread_spinlock_t spin;
  SpinLock() { pthread_spin_init(&spin, PTHREAD_PROCESS_PRIVATE); }
  void lock() { pthread_spin_lock(&spin); }
  void unlock() { pthread_spin_unlock(&spin); }
};

struct AdaptiveMutex {
  pthread_mutex_t mutex = PTHREAD_ADAPTIVE_MUTEX_INITIALIZER_NP;
  void lock() { pthread_mutex_lock(&mutex); }
  void unlock() { pthread_mutex_unlock(&mutex); }
};

BENCHMARK(pair<Word>)->Name("lock/pair/word/ours");
BENCHMARK(pair<UnfairLock>)->Name("lock/pair/object/ours");
BENCHMARK(pair<QMutex>)->Name("lock/pair/word/qmutex");
BENCHMARK(pair<std::mutex>)->Name("lock/pair/word/std_mutex");
BENCHMARK(pair<AbseilMutex>)->Name("lock/pair/word/absl");
BENCHMARK(pair<AtomicWait>)->Name("lock/pair/word/atomic_wait");
BENCHMARK(pair<SpinLock>)->Name("lock/pair/word/spin");

// A chain of multiplications that the compiler must keep: about 0.9 ns each.
std::uint64_t work(std::uint64_t value, int multiplications) {
  for (int i = 0; i < multiplications; ++i) value = value * 0x9e37'79b9'7f4a'7c15 + 1;
  return value;
}

template <class Lock, int Inside, int Outside>
void contended(benchmark::State& state) {
  static Lock lock;
  static std::uint64_t guarded = 1;
  std::uint64_t own = 1;
  for (auto _ : state) {
    lock.lock();
    guarded = work(guarded, Inside);
    lock.unlock();
    own = work(own, Outside);
  }
  benchmark::DoNotOptimize(own);
}
constexpr int kHot = 4;
constexpr int kInside = 30;
constexpr int kOutside = 120;

#define LOCK_BENCHMARKS(Type, name)                                                                         \
  BENCHMARK((contended<Type, kHot, 0>))->Name("lock/hot/two/" name)->Threads(2)->UseRealTime();             \
  BENCHMARK((contended<Type, kInside, kOutside>))->Name("lock/busy/two/" name)->Threads(2)->UseRealTime();  \
  BENCHMARK((contended<Type, kInside, kOutside>))->Name("lock/busy/four/" name)->Threads(4)->UseRealTime(); \
  BENCHMARK((contended<Type, kInside, kOutside>))->Name("lock/busy/eight/" name)->Threads(8)->UseRealTime()
LOCK_BENCHMARKS(Word, "ours");
LOCK_BENCHMARKS(QMutex, "qmutex");
LOCK_BENCHMARKS(std::mutex, "std_mutex");
LOCK_BENCHMARKS(AbseilMutex, "absl");
LOCK_BENCHMARKS(AtomicWait, "atomic_wait");
LOCK_BENCHMARKS(AdaptiveMutex, "adaptive");

void performOurs(benchmark::State& state) {
  static Locked<std::int64_t> box(0);
  for (auto _ : state) box.perform([](std::int64_t& content) { ++content; });
}
BENCHMARK(performOurs)->Name("locked/perform/increment/ours");

template <class Lock>
void performPeer(benchmark::State& state) {
  static Lock lock;
  static std::int64_t content = 0;
  for (auto _ : state) {
    std::lock_guard guard(lock);
    benchmark::DoNotOptimize(++content);
  }
}
BENCHMARK(performPeer<std::mutex>)->Name("locked/perform/increment/std_mutex");
BENCHMARK(performPeer<AbseilMutex>)->Name("locked/perform/increment/absl");
BENCHMARK(performPeer<Word>)->Name("locked/perform/increment/bare_word");

void createOurs(benchmark::State& state) {
  for (auto _ : state) {
    Locked<std::int64_t> box(1);
    benchmark::DoNotOptimize(&box);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(createOurs)->Name("locked/create/box/ours");
void createMalloc(benchmark::State& state) {
  for (auto _ : state) {
    void* cell = std::malloc(4);
    benchmark::DoNotOptimize(cell);
    benchmark::ClobberMemory();
    std::free(cell);
  }
}
BENCHMARK(createMalloc)->Name("locked/create/box/malloc");

}  // namespace

BENCHMARK_MAIN();
