// SPDX-License-Identifier: Apache-2.0
// Reading a keyed archive into objects, beside a property-list library that makes a tree of it first. The archive holds
// an array of 3,333 instances, each with a name, a genre of its own and a number: 10,000 objects.
#include "benchmarks/second_thread.h"
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/object/string.h>

#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace havrin;

constexpr int kInstances = 3'333;  // in all rows but those of growth

class Station : public Object<Station, NSObject> {
 public:
  Station() = default;
  explicit Station(int number)
      : name_(makeString("Station number " + std::to_string(number))),
        genre_(makeString("Genre " + std::to_string(number))),
        listeners_(number * 37 % 100'000) {}

  void encodeWithCoder(NSCoder* coder) const {
    coder->encodeObject(name_, "name");
    coder->encodeObject(genre_, "genre");
    coder->encodeInteger(listeners_, "listeners");
  }
  Strong<NSObject> initWithCoder(NSCoder* coder) {
    name_ = coder->decodeObject<NSString>("name");
    genre_ = coder->decodeObject<NSString>("genre");
    listeners_ = coder->decodeIntegerForKey("listeners");
    return this;
  }
  using Protocols = List<NSSecureCoding>;
  using Members =
      List<Method<"encodeWithCoder:", &Station::encodeWithCoder>, Method<"initWithCoder:", &Station::initWithCoder>>;

 private:
  Strong<NSString> name_;
  Strong<NSString> genre_;
  std::int64_t listeners_ = 0;
};
const ArchivedClass<Station> kArchivedStation("Station");

NSData& archive(int instances = kInstances) {
  static auto* const kArchives = new std::map<int, Strong<NSData>>;
  Strong<NSData>& made = (*kArchives)[instances];
  if (!made) {
    ArrayBuilder stations(static_cast<std::size_t>(instances));
    for (int i = 0; i < instances; ++i) stations.add(make<Station>(i));
    made = NSKeyedArchiver::archivedDataWithRootObject(stations.finish(), true, nullptr);
  }
  return *made;
}

void check(bool isRight) {
  if (!isRight) std::abort();
}

void readsOurs(benchmark::State& state, int instances) {
  NSData& data = archive(instances);
  for (auto _ : state) {
    const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(&data, nullptr);
    unarchiver->setRequiresSecureCoding(false);
    const auto stations = unarchiver->decodeObject<NSArray>(NSKeyedArchiveRootObjectKey);
    check(stations && stations->count() == static_cast<std::uint64_t>(instances));
  }
}

void writesOurs(benchmark::State& state) {
  const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(&archive(), nullptr);
  unarchiver->setRequiresSecureCoding(false);
  const auto stations = unarchiver->decodeObjectForKey(NSKeyedArchiveRootObjectKey);
  for (auto _ : state) {
    check(NSKeyedArchiver::archivedDataWithRootObject(stations, false, nullptr)->length() == archive().length());
  }
}

// The peer: a tree of nodes, walked by hand into objects that share as ours do.

struct PlainStation {
  std::shared_ptr<std::string> name;
  std::shared_ptr<std::string> genre;
  std::int64_t listeners = 0;
};

class Tree {
 public:
  explicit Tree(int instances = kInstances) {
    const auto bytes = archive(instances).bytes();
    plist_from_bin(reinterpret_cast<const char*>(bytes.data()), static_cast<std::uint32_t>(bytes.size()), &root_);
    check(root_ != nullptr);
    objects_ = plist_dict_get_item(root_, "$objects");
  }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;
  ~Tree() { plist_free(root_); }

  [[nodiscard]] plist_t whole() const { return root_; }
  [[nodiscard]] plist_t objects() const { return objects_; }
  [[nodiscard]] plist_t root() const { return plist_dict_get_item(plist_dict_get_item(root_, "$top"), "root"); }

 private:
  plist_t root_ = nullptr;
  plist_t objects_ = nullptr;
};

std::uint64_t uidOf(plist_t node) {
  std::uint64_t uid = 0;
  plist_get_uid_val(node, &uid);
  return uid;
}

std::shared_ptr<std::string> textOf(plist_t node) {
  std::uint64_t length = 0;
  const char* const text = plist_get_string_ptr(node, &length);
  return std::make_shared<std::string>(text, length);
}

template <class At>
std::vector<std::shared_ptr<PlainStation>> readsTree(At objectAt, plist_t root) {
  std::vector<std::shared_ptr<PlainStation>> stations;
  const plist_t row = plist_dict_get_item(objectAt(uidOf(root)), "NS.objects");
  stations.reserve(plist_array_get_size(row));
  plist_array_iter next = nullptr;
  plist_array_new_iter(row, &next);
  for (plist_t reference = nullptr; plist_array_next_item(row, next, &reference), reference != nullptr;) {
    const plist_t values = objectAt(uidOf(reference));
    const plist_t record = objectAt(uidOf(plist_dict_get_item(values, "$class")));
    std::uint64_t length = 0;
    check(std::string_view(plist_get_string_ptr(plist_dict_get_item(record, "$classname"), &length)) == "Station");
    auto station = std::make_shared<PlainStation>();
    station->name = textOf(objectAt(uidOf(plist_dict_get_item(values, "name"))));
    station->genre = textOf(objectAt(uidOf(plist_dict_get_item(values, "genre"))));
    std::uint64_t listeners = 0;
    plist_get_uint_val(plist_dict_get_item(values, "listeners"), &listeners);
    station->listeners = static_cast<std::int64_t>(listeners);
    stations.push_back(std::move(station));
  }
  std::free(next);
  return stations;
}

void readsIndexed(benchmark::State& state, int instances) {
  for (auto _ : state) {
    const Tree tree(instances);
    std::vector<plist_t> objects;
    objects.reserve(plist_array_get_size(tree.objects()));
    plist_array_iter next = nullptr;
    plist_array_new_iter(tree.objects(), &next);
    for (plist_t object = nullptr; plist_array_next_item(tree.objects(), next, &object), object != nullptr;) {
      objects.push_back(object);
    }
    std::free(next);
    const auto stations = readsTree([&objects](std::uint64_t uid) { return objects.at(uid); }, tree.root());
    check(stations.size() == static_cast<std::size_t>(instances));
  }
}

void readsByIndex(benchmark::State& state) {
  for (auto _ : state) {
    const Tree tree;
    const auto stations = readsTree(
        [&tree](std::uint64_t uid) { return plist_array_get_item(tree.objects(), static_cast<std::uint32_t>(uid)); },
        tree.root());
    check(stations.size() == kInstances);
  }
}

void parses(benchmark::State& state) {
  for (auto _ : state) {
    const Tree tree;
    benchmark::DoNotOptimize(tree.objects());
  }
}

void writesTree(benchmark::State& state) {
  const Tree tree;
  for (auto _ : state) {
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(tree.whole(), &bytes, &length);
    check(length > kInstances);
    plist_to_bin_free(bytes);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::RegisterBenchmark("keyed_archive/read/10000/ours", readsOurs, kInstances);
  benchmark::RegisterBenchmark("keyed_archive/read/10000/libplist_indexed", readsIndexed, kInstances);
  benchmark::RegisterBenchmark("keyed_archive/read/10000/libplist_by_index", readsByIndex);
  benchmark::RegisterBenchmark("keyed_archive/read/10000/libplist_parse_alone", parses);
  benchmark::RegisterBenchmark("keyed_archive/write/10000/ours", writesOurs);
  benchmark::RegisterBenchmark("keyed_archive/write/10000/libplist_tree_alone", writesTree);
  for (int instances = 1; instances <= 100'000; instances *= 10) {
    const std::string label = "growth/archive/" + std::to_string(instances);
    benchmark::RegisterBenchmark((label + "/ours").c_str(), readsOurs, instances);
    benchmark::RegisterBenchmark((label + "/libplist_indexed").c_str(), readsIndexed, instances);
  }
  return runBesideSecondThread(argc, argv);
}
