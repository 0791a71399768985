// SPDX-License-Identifier: Apache-2.0
// Archives that are small and stand for much, or nest, or crowd together: each is made for one bound of their reader.
#pragma once

#include "archive_samples.h"
#include <HavrinFoundation/platform/documents/binary_property_list_writer.h>

namespace havrin::samples {

/// Writes archives of the binary form, objects by UID, without asking whether they make sense.
class Forger {
 public:
  using Number = BinaryPropertyListWriter::Number;
  using Uids = std::vector<std::uint64_t>;

  BinaryPropertyListWriter list;

  Forger() { add(list.text("$null")); }

  [[nodiscard]] std::uint64_t next() const { return objects_.size(); }

  std::uint64_t add(Number object) {
    objects_.push_back(object);
    return objects_.size() - 1;
  }

  std::uint64_t text(std::string_view text) { return add(list.text(text)); }

  Number references(const Uids& uids) {
    std::vector<Number> numbers;
    numbers.reserve(uids.size());
    for (const std::uint64_t uid : uids) numbers.push_back(list.uid(uid));
    return list.array(numbers);
  }

  std::uint64_t classNamed(std::string_view name) {
    const Number keys[] = {list.text("$classname")}, values[] = {list.text(name)};
    return add(list.dictionary(keys, values));
  }

  std::uint64_t instance(std::uint64_t cls, std::vector<std::pair<std::string_view, Number>> values) {
    values.emplace_back("$class", list.uid(cls));
    std::vector<Number> keys, numbers;
    for (const auto& [key, value] : values) {
      keys.push_back(list.text(key));
      numbers.push_back(value);
    }
    return add(list.dictionary(keys, numbers));
  }

  std::uint64_t row(std::uint64_t cls, const Uids& uids) { return instance(cls, {{"NS.objects", references(uids)}}); }

  std::uint64_t dictionary(std::uint64_t cls, const Uids& keys, const Uids& values) {
    return instance(cls, {{"NS.keys", references(keys)}, {"NS.objects", references(values)}});
  }

  // The archive with this object at its root.
  Strong<NSData> finish(std::uint64_t root) {
    const Number top[] = {list.text("root")}, uid[] = {list.uid(root)};
    const Number keys[] = {list.text("$archiver"), list.text("$version"), list.text("$top"), list.text("$objects")};
    const Number values[] = {list.text("NSKeyedArchiver"), list.integer(std::int64_t{100000}),
                             list.dictionary(top, uid), list.array(objects_)};
    return makeData(list.finish(list.dictionary(keys, values)));
  }

 private:
  std::vector<Number> objects_;
};

using Uids = Forger::Uids;

inline Uids repeated(std::uint64_t uid, std::size_t count) { return Uids(count, uid); }

inline Uids upTo(std::size_t count, const std::function<std::uint64_t(std::size_t)>& uid) {
  Uids uids;
  for (std::size_t i = 0; i < count; ++i) uids.push_back(uid(i));
  return uids;
}

inline constexpr std::size_t kMany = 100'000;
inline constexpr std::size_t kHolders = 10'000;
inline const std::string kLong(500'000, 'x');

// Arrays that share their parts: each level stands for twice the one below.
inline Strong<NSData> laughs() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray");
  std::uint64_t all = forger.text("ha");
  for (int level = 0; level < 40; ++level) all = forger.row(arrays, {all, all});
  return forger.finish(forger.row(forger.classNamed("NSSet"), {all}));
}

inline Strong<NSData> deepNest() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray");
  std::uint64_t innermost = forger.text("in");
  for (int i = 0; i < 1'000'000; ++i) innermost = forger.row(arrays, {innermost});
  return forger.finish(innermost);
}

// Each link of the chain is made before the next one holds it: nothing nests while it is read.
inline Strong<NSData> chainOfArrays() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray");
  std::uint64_t last = forger.text("first");
  const Uids all = upTo(3 * kMany, [&](std::size_t) { return last = forger.row(arrays, {last}); });
  return forger.finish(forger.row(arrays, all));
}

inline Strong<NSData> chainOfNodes() {
  Forger forger;
  const auto nodes = forger.classNamed("Node");
  const auto name = forger.text("n");
  std::uint64_t last = 0;
  const Uids all = upTo(300'000, [&](std::size_t) {
    return last = forger.instance(nodes, {{"name", forger.list.uid(name)}, {"child", forger.list.uid(last)}});
  });
  return forger.finish(forger.row(forger.classNamed("NSArray"), all));
}

// One large part, which each of many objects has as its own.
template <class Make>
inline Strong<NSData> sharedBy(std::string_view cls, Make make) {
  Forger forger;
  const auto holders = forger.classNamed(cls);
  const auto strings = forger.classNamed("NSMutableString");
  const auto large = forger.instance(strings, {{"NS.string", forger.list.text(kLong)}});
  const auto small = forger.text("small");
  const Uids all = upTo(kHolders, [&](std::size_t) { return make(forger, holders, large, small); });
  return forger.finish(forger.row(forger.classNamed("NSArray"), all));
}

inline Strong<NSData> longTexts(std::string_view cls) {
  return sharedBy(cls, [](Forger& forger, std::uint64_t holders, std::uint64_t large, std::uint64_t small) {
    return forger.instance(holders, {{"NS.objects", forger.references({large})},
                                     {"NS.relative", forger.list.uid(large)},
                                     {"NSString", forger.list.uid(large)},
                                     {"NS.string", forger.list.uid(large)},
                                     {"NS.base", forger.list.uid(0)},
                                     {"small", forger.list.uid(small)}});
  });
}

inline Strong<NSData> basesOfLinks() {
  Forger forger;
  const auto links = forger.classNamed("NSURL");
  const auto link = [&](std::uint64_t text, std::uint64_t base) {
    return forger.instance(links, {{"NS.base", forger.list.uid(base)}, {"NS.relative", forger.list.uid(text)}});
  };
  const auto base = link(forger.text("https://h/" + kLong), 0);
  const auto text = forger.text("d");
  return forger.finish(
      forger.row(forger.classNamed("NSArray"), upTo(kHolders, [&](std::size_t) { return link(text, base); })));
}

inline Strong<NSData> longKeys() {
  return sharedBy("NSDictionary", [](Forger& forger, std::uint64_t holders, std::uint64_t large, std::uint64_t small) {
    return forger.dictionary(holders, {large}, {small});
  });
}

// One large mutable dictionary as the attributes of many texts.
inline Strong<NSData> largeAttributes(std::size_t texts, std::size_t runs) {
  Forger forger;
  const auto cls = forger.classNamed("NSAttributedString");
  const auto arrays = forger.classNamed("NSArray");
  const auto dictionaries = forger.classNamed("NSMutableDictionary");
  const auto one = forger.text("1");
  const auto size = [&](std::size_t count, std::string_view prefix) {
    const Uids keys = upTo(count, [&](std::size_t i) { return forger.text(std::string(prefix) + std::to_string(i)); });
    return forger.dictionary(dictionaries, keys, repeated(one, count));
  };
  const auto attributes = forger.row(arrays, {size(5000, "k"), size(5000, "l")});
  const auto text = forger.text(std::string(runs, 'x'));
  std::vector<std::byte> bytes;
  for (std::size_t i = 0; i < runs; ++i) bytes.insert(bytes.end(), {std::byte{1}, static_cast<std::byte>(i & 1)});
  const auto info = forger.add(forger.list.data(bytes));
  const Uids all = upTo(texts, [&](std::size_t) {
    return forger.instance(cls, {{"NSString", forger.list.uid(text)},
                                 {"NSAttributes", forger.list.uid(attributes)},
                                 {"NSAttributeInfo", forger.list.uid(info)}});
  });
  return forger.finish(forger.row(arrays, all));
}

// All keys of each object are one long text.
inline Strong<NSData> longKeysOf(std::string_view cls) {
  Forger forger;
  const auto holders = forger.classNamed(cls);
  const auto key = forger.list.text(kLong);
  const auto nothing = forger.list.uid(0);
  const std::vector<Forger::Number> keys(20'000, key), values(20'000, nothing);
  auto manyKeys = keys, manyValues = values;
  manyKeys.push_back(forger.list.text("$class"));
  manyValues.push_back(forger.list.uid(holders));
  const Uids all = upTo(50, [&](std::size_t) { return forger.add(forger.list.dictionary(manyKeys, manyValues)); });
  return forger.finish(forger.row(forger.classNamed("NSArray"), all));
}

// An array that differs from others by its number, in an array inside, which counts for nothing in its hash.
inline std::uint64_t alike(Forger& forger, std::uint64_t arrays, std::size_t number, std::uint64_t large) {
  return forger.row(arrays, {forger.row(arrays, {large, forger.text(std::to_string(number))})});
}

inline Strong<NSData> membersOfOneHash() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray"), sets = forger.classNamed("NSSet");
  const auto large = forger.row(arrays, repeated(forger.text("x"), 10'000));
  Uids all = upTo(kMany, [&](std::size_t i) { return forger.text("small" + std::to_string(i)); });
  for (std::size_t i = 0; i < 200; ++i) all.push_back(alike(forger, arrays, i, large));
  return forger.finish(forger.row(sets, all));
}

// Sets of sets, all of one hash: comparing two of them is the square of what they hold.
inline Strong<NSData> setsOfSets() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray"), sets = forger.classNamed("NSSet");
  const auto nothing = forger.text("x");
  std::size_t leaf = 0;
  const std::function<std::uint64_t(int)> level = [&](int depth) {
    if (depth == 0) return alike(forger, arrays, leaf++, nothing);
    return forger.row(sets, upTo(25, [&](std::size_t) { return level(depth - 1); }));
  };
  const auto one = level(3);
  leaf = 0;
  return forger.finish(forger.row(sets, {one, level(3)}));
}

inline Strong<NSData> crowdingNumbers() {
  Forger forger;
  const Uids all = upTo(kMany, [&](std::size_t i) {
    return forger.add(i % 2 ? forger.list.real(0.5 + static_cast<double>(i))
                            : forger.list.integer(static_cast<std::int64_t>(i) << 44));
  });
  return forger.finish(forger.row(forger.classNamed("NSSet"), all));
}

// Records of classes that find their class only behind all of their hints.
inline Strong<NSData> hints() {
  Forger forger;
  std::vector<Forger::Number> names(kMany, forger.list.text("?"));
  names.push_back(forger.list.text("NSNull"));
  const auto all = forger.list.array(names), long_ = forger.list.text(kLong);
  const Uids nulls = upTo(1000, [&](std::size_t) {
    const Forger::Number keys[] = {forger.list.text("$classname"), forger.list.text("$classhints")};
    const Forger::Number values[] = {long_, all};
    return forger.instance(forger.add(forger.list.dictionary(keys, values)), {});
  });
  return forger.finish(forger.row(forger.classNamed("NSArray"), nulls));
}

inline Strong<NSData> oneTextAsManyObjects() {
  Forger forger;
  const auto text = forger.list.text(kLong);
  return forger.finish(
      forger.row(forger.classNamed("NSArray"), upTo(kHolders, [&](std::size_t) { return forger.add(text); })));
}

inline Strong<NSData> manyReferences(std::string_view cls) {
  Forger forger;
  return forger.finish(forger.row(forger.classNamed(cls), repeated(forger.text("x"), 1'000'000)));
}

inline Strong<NSData> xmlOfArrays() {
  std::string arrays = "<array>";
  for (std::size_t i = 0; i < kMany; ++i) arrays += "<array/>";
  return xmlArchive({"<string>x</string>"}, key("root", uid(1)) + key("more", arrays + "</array>"));
}

}  // namespace havrin::samples
