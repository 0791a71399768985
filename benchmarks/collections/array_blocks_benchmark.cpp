// SPDX-License-Identifier: Apache-2.0
// Filtering and transforming arrays of counted objects. Every side reads one field of each element, which is as likely to
// pass as not, and the time ends when the result has been destroyed.
#include "benchmarks/second_thread.h"
#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/platform/foundation/number.h>

#include <QList>
#include <QVariant>
#include <benchmark/benchmark.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace havrin;

class Item : public Object<Item, NSObject> {
 public:
  explicit Item(std::int64_t value) : value_(value) {}
  std::int64_t value() const { return value_; }

 private:
  std::int64_t value_;
};

struct Counted : boost::intrusive_ref_counter<Counted> {
  explicit Counted(std::int64_t number) : value(number) {}
  std::int64_t value;
};
struct Plain {
  explicit Plain(std::int64_t number) : value(number) {}
  std::int64_t value;
};

std::vector<std::int64_t> numbers(std::size_t size) {
  std::mt19937_64 generator(7);
  std::vector<std::int64_t> result(size);
  for (auto& number : result) number = static_cast<std::int64_t>(generator() >> 2);
  return result;
}

// The same objects in many orders, which calls take in turn: else the branch predictor learns by heart which elements
// of one short array pass, as it never does in an application.
constexpr std::size_t kLearnable = 20'000;
template <class List>
std::vector<List> orders(List list) {
  std::mt19937_64 generator(8);
  std::vector<List> result{list};
  while (static_cast<std::size_t>(list.size()) * result.size() < kLearnable) {
    std::shuffle(list.begin(), list.end(), generator);
    result.push_back(list);
  }
  return result;
}
template <class Pointer, class Make>
auto pointers(std::size_t size, Make make) {
  std::vector<Pointer> result;
  for (const std::int64_t number : numbers(size)) result.push_back(make(number));
  return orders(std::move(result));
}
auto objects(std::size_t size) {
  std::vector<Strong<NSArray>> result;
  for (const auto& order : pointers<Strong<Item>>(size, [](std::int64_t number) { return make<Item>(number); })) {
    result.push_back(makeArray(order));
  }
  return result;
}
auto shared(std::size_t size) {
  return pointers<std::shared_ptr<Plain>>(size, [](std::int64_t number) { return std::make_shared<Plain>(number); });
}
auto intrusive(std::size_t size) {
  return pointers<boost::intrusive_ptr<Counted>>(
      size, [](std::int64_t number) { return boost::intrusive_ptr<Counted>(new Counted(number)); });
}
auto variants(std::size_t size) {
  QList<QVariant> result;
  for (const std::int64_t number : numbers(size)) result.push_back(QVariant(static_cast<qlonglong>(number)));
  return orders(std::move(result));
}

bool isOdd(std::int64_t number) { return number % 2 != 0; }
std::int64_t valueOf(const QVariant& variant) { return variant.toLongLong(); }
template <class Pointer>
std::int64_t valueOf(const Pointer& pointer) {
  return pointer->value;
}

Strong<NSArray> selectOurs(const Strong<NSArray>& array) {
  return send<"select:">(array, [](NSObject* item) { return isOdd(static_cast<Item*>(item)->value()); });
}
template <class List>
List selectPeer(const List& list) {
  List result;
  for (const auto& one : list) {
    if (isOdd(valueOf(one))) result.push_back(one);
  }
  return result;
}

Strong<NSArray> mapOurs(const Strong<NSArray>& array) {
  return send<"map:">(array, [](NSObject* item) { return make<Item>(static_cast<Item*>(item)->value() + 1); });
}
Strong<NSArray> mapToNumbers(const Strong<NSArray>& array) {
  return send<"map:">(array, [](NSObject* item) { return makeNumber(static_cast<Item*>(item)->value() & 0xFF); });
}
auto mapShared(const std::vector<std::shared_ptr<Plain>>& list) {
  std::vector<std::shared_ptr<Plain>> result;
  result.reserve(list.size());
  for (const auto& one : list) result.push_back(std::make_shared<Plain>(one->value + 1));
  return result;
}
auto mapIntrusive(const std::vector<boost::intrusive_ptr<Counted>>& list) {
  std::vector<boost::intrusive_ptr<Counted>> result;
  result.reserve(list.size());
  for (const auto& one : list) result.emplace_back(new Counted(one->value + 1));
  return result;
}
auto mapVariants(const QList<QVariant>& list) {
  QList<QVariant> result;
  result.reserve(list.size());
  for (const auto& one : list) result.push_back(QVariant(static_cast<qlonglong>(one.toLongLong() + 1)));
  return result;
}

std::size_t sizeOf(const Strong<NSArray>& array) { return array->count(); }
template <class List>
std::size_t sizeOf(const List& list) {
  return static_cast<std::size_t>(list.size());
}

// Each result is checked for its length, once.
template <class Make, class Operation>
void measure(const std::string& label, const char* side, std::size_t size, std::size_t expected, Make makeInputs,
             Operation operation) {
  const std::string name = label + "/" + std::to_string(size) + "/" + side;
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    const auto inputs = makeInputs(size);
    for (const auto& input : inputs) {
      if (sizeOf(operation(input)) != expected) std::abort();
    }
    std::size_t next = 0;
    for (auto _ : state) {
      auto result = operation(inputs[next]);
      benchmark::DoNotOptimize(result);
      if (++next == inputs.size()) next = 0;
    }
  });
}

void registerAll() {
  for (const std::size_t size : {10U, 1000U, 1'000'000U}) {
    std::size_t odd = 0;
    for (const std::int64_t number : numbers(size)) odd += isOdd(number);
    measure("array_blocks/select", "ours", size, odd, objects, selectOurs);
    measure("array_blocks/select", "shared_ptr", size, odd, shared, selectPeer<std::vector<std::shared_ptr<Plain>>>);
    measure("array_blocks/select", "intrusive_ptr", size, odd, intrusive,
            selectPeer<std::vector<boost::intrusive_ptr<Counted>>>);
    measure("array_blocks/select", "qvariant", size, odd, variants, selectPeer<QList<QVariant>>);
  }
  for (std::size_t size = 1; size <= 1'000'000; size *= 10) {
    std::size_t odd = 0;
    for (const std::int64_t number : numbers(size)) odd += isOdd(number);
    measure("growth/select", "ours", size, odd, objects, selectOurs);
    measure("growth/select", "shared_ptr", size, odd, shared, selectPeer<std::vector<std::shared_ptr<Plain>>>);
    measure("growth/select", "intrusive_ptr", size, odd, intrusive,
            selectPeer<std::vector<boost::intrusive_ptr<Counted>>>);
  }
  constexpr std::size_t kMapped = 1000;
  measure("array_blocks/map", "ours", kMapped, kMapped, objects, mapOurs);
  measure("array_blocks/map_to_numbers", "ours", kMapped, kMapped, objects, mapToNumbers);
  measure("array_blocks/map", "shared_ptr", kMapped, kMapped, shared, mapShared);
  measure("array_blocks/map", "intrusive_ptr", kMapped, kMapped, intrusive, mapIntrusive);
  measure("array_blocks/map", "qvariant", kMapped, kMapped, variants, mapVariants);
}

}  // namespace

int main(int argc, char** argv) {
  registerAll();
  return runBesideSecondThread(argc, argv);
}
