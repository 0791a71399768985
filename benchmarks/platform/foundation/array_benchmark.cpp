// SPDX-License-Identifier: Apache-2.0
// Copying, adding to and reading arrays of counted objects.
#include "benchmarks/second_thread.h"
#include <HavrinFoundation/platform/foundation/array.h>

#include <benchmark/benchmark.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using namespace havrin;

constexpr std::int64_t kSize = 1000;
constexpr std::int64_t kSteps = 10'000;
class Item : public Object<Item, NSObject> {
 public:
  explicit Item(std::int64_t value) : value_(value) {}
  std::int64_t value_;
};
struct Counted : boost::intrusive_ref_counter<Counted> {
  explicit Counted(std::int64_t number) : value(number) {}
  std::int64_t value;
};
using Peers = std::vector<boost::intrusive_ptr<Counted>>;

Strong<NSMutableArray> list() {
  auto result = make<NSMutableArray>();
  for (std::int64_t i = 0; i < kSize; ++i) result->addObject(make<Item>(i));
  return result;
}
Peers peers() {
  Peers result;
  for (std::int64_t i = 0; i < kSize; ++i) result.emplace_back(new Counted(i));
  return result;
}

void copyOurs(benchmark::State& state) {
  const auto objects = list();
  for (auto _ : state) benchmark::DoNotOptimize(objects->copy());
}
// What a copy costs that has slots of its own.
void mutableCopyOurs(benchmark::State& state) {
  const auto objects = list();
  for (auto _ : state) benchmark::DoNotOptimize(objects->mutableCopy());
}
template <class Pointer, class Make>
void copyPeer(benchmark::State& state, Make make) {
  std::vector<Pointer> objects;
  for (std::int64_t i = 0; i < kSize; ++i) objects.push_back(make(i));
  for (auto _ : state) {
    auto copy = objects;
    benchmark::DoNotOptimize(copy);
  }
}
void copyShared(benchmark::State& state) {
  copyPeer<std::shared_ptr<std::int64_t>>(state, [](std::int64_t i) { return std::make_shared<std::int64_t>(i); });
}
void copyIntrusive(benchmark::State& state) {
  copyPeer<boost::intrusive_ptr<Counted>>(state,
                                          [](std::int64_t i) { return boost::intrusive_ptr<Counted>(new Counted(i)); });
}

// A chain of additions, each of which gives an array of its own; the one before is dropped.
void chainOurs(benchmark::State& state) {
  const auto object = make<Item>(1);
  for (auto _ : state) {
    Strong<NSArray> array = makeArray({});
    for (std::int64_t i = 0; i < kSteps; ++i) array = array->arrayByAddingObject(object);
    if (array->count() != kSteps) std::abort();
  }
}
void chainCopied(benchmark::State& state) {
  const boost::intrusive_ptr<Counted> object(new Counted(1));
  for (auto _ : state) {
    Peers array;
    for (std::int64_t i = 0; i < kSteps; ++i) {
      Peers next;
      next.reserve(array.size() + 1);
      next = array;
      next.push_back(object);
      array = std::move(next);
    }
    if (array.size() != kSteps) std::abort();
  }
}
void chainPushed(benchmark::State& state) {
  const boost::intrusive_ptr<Counted> object(new Counted(1));
  for (auto _ : state) {
    Peers array;
    for (std::int64_t i = 0; i < kSteps; ++i) array.push_back(object);
    if (array.size() != kSteps) std::abort();
  }
}
void addOurs(benchmark::State& state) {
  const auto object = make<Item>(1);
  for (auto _ : state) {
    const auto array = make<NSMutableArray>();
    for (std::int64_t i = 0; i < kSteps; ++i) array->addObject(object);
    if (array->count() != kSteps) std::abort();
  }
}

// One load for each element: its place, as a caller that compares or passes on reads it.
void readOurs(benchmark::State& state) {
  Strong<NSArray> array = makeArray({});
  for (std::int64_t i = 0; i < kSize; ++i) array = array->arrayByAddingObject(make<Item>(i));
  for (auto _ : state) {
    std::uintptr_t sum = 0;
    for (const auto& item : array->elements()) sum += reinterpret_cast<std::uintptr_t>(item.get());
    benchmark::DoNotOptimize(sum);
  }
}
void readByEnumeration(benchmark::State& state) {
  const auto array = list();
  for (auto _ : state) {
    std::uintptr_t sum = 0;
    for (NSObject* item : each(array)) sum += reinterpret_cast<std::uintptr_t>(item);
    benchmark::DoNotOptimize(sum);
  }
}
void readVector(benchmark::State& state) {
  const Peers array = peers();
  for (auto _ : state) {
    std::uintptr_t sum = 0;
    for (const auto& item : array) sum += reinterpret_cast<std::uintptr_t>(item.get());
    benchmark::DoNotOptimize(sum);
  }
}

BENCHMARK(copyOurs)->Name("array/copy/1000/ours");
BENCHMARK(mutableCopyOurs)->Name("array/mutable_copy/1000/ours");
BENCHMARK(copyShared)->Name("array/copy/1000/shared_ptr");
BENCHMARK(copyIntrusive)->Name("array/copy/1000/intrusive_ptr");
BENCHMARK(chainOurs)->Name("array/chain/10000/ours");
BENCHMARK(chainCopied)->Name("array/chain/10000/copied_vector");
BENCHMARK(chainPushed)->Name("array/chain/10000/push_back");
BENCHMARK(addOurs)->Name("array/add/10000/ours");
BENCHMARK(readOurs)->Name("array/read/1000/ours");
BENCHMARK(readByEnumeration)->Name("array/enumerate/1000/ours");
BENCHMARK(readVector)->Name("array/read/1000/vector");

}  // namespace

int main(int argc, char** argv) { return runBesideSecondThread(argc, argv); }
