// SPDX-License-Identifier: Apache-2.0
// The lock word, and references to objects, in a process that has one thread. There the standard library counts and
// locks without locked instructions; ours are the same as ever. Nothing here may start a thread.
#include "benchmarks/locks.h"
#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/object/members.h>

#include <QMutex>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <mutex>
#include <sys/single_threaded.h>

namespace {

using namespace havrin;

BENCHMARK(pair<Word>)->Name("one_thread/lock/pair/ours");
BENCHMARK(pair<QMutex>)->Name("one_thread/lock/pair/qmutex");
BENCHMARK(pair<std::mutex>)->Name("one_thread/lock/pair/std_mutex");
BENCHMARK(pair<AbseilMutex>)->Name("one_thread/lock/pair/absl");

class Item : public Object<Item, NSObject> {};
struct Plain {
  virtual ~Plain() = default;
};

template <class Reference>
void copyAndDrop(benchmark::State& state, const Reference& reference) {
  for (auto _ : state) {
    Reference copy = reference;
    benchmark::DoNotOptimize(copy);
  }
}
void copyOurs(benchmark::State& state) { copyAndDrop(state, make<Item>()); }
void copyShared(benchmark::State& state) { copyAndDrop(state, std::make_shared<Plain>()); }
BENCHMARK(copyOurs)->Name("one_thread/copy/strong/ours");
BENCHMARK(copyShared)->Name("one_thread/copy/strong/shared_ptr");

void makeOurs(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(make<Item>());
}
void makeShared(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(std::make_shared<Plain>());
}
BENCHMARK(makeOurs)->Name("one_thread/make/object/ours");
BENCHMARK(makeShared)->Name("one_thread/make/object/make_shared");

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  if (__libc_single_threaded) return 0;
  std::fputs("unfair_lock_word_benchmark: something has started a thread\n", stderr);
  return 1;
}
