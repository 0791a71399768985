// SPDX-License-Identifier: Apache-2.0
// Small archives that expand, nest or collide: each is made for one bound of their reader.
#pragma once

#include "archive_samples.h"
#include <HavrinFoundation/platform/documents/binary_property_list_writer.h>

namespace havrin::samples {

/// Writes archives of the binary form, objects by UID, without asking whether they make sense.
class Forger {
 public:
  using Number = BinaryPropertyListWriter::Number;
  using Uids = std::vector<std::uint64_t>;
  using Values = std::vector<std::pair<std::string_view, Number>>;

  BinaryPropertyListWriter list;

  Forger() { text("$null"); }

  std::uint64_t add(Number object) {
    objects_.push_back(object);
    return objects_.size() - 1;
  }

  std::uint64_t record(const Values& values) { return add(dictionaryOf(values)); }

  std::uint64_t text(std::string_view text) { return add(list.text(text)); }

  Number references(const Uids& uids) {
    std::vector<Number> numbers;
    numbers.reserve(uids.size());
    for (const std::uint64_t uid : uids) numbers.push_back(list.uid(uid));
    return list.array(numbers);
  }

  std::uint64_t classNamed(std::string_view name) { return record({{"$classname", list.text(name)}}); }

  std::uint64_t instance(std::uint64_t cls, Values values) {
    values.emplace_back("$class", list.uid(cls));
    return record(values);
  }

  // Each object that holds it as a part has a copy.
  std::uint64_t largeText() {
    return instance(classNamed("NSMutableString"), {{"NS.string", list.text(std::string(500'000, 'x'))}});
  }

  std::uint64_t row(std::uint64_t cls, const Uids& uids) { return instance(cls, {{"NS.objects", references(uids)}}); }

  std::uint64_t dictionary(std::uint64_t cls, const Uids& keys, const Uids& values) {
    return instance(cls, {{"NS.keys", references(keys)}, {"NS.objects", references(values)}});
  }

  // The archive with this object at its root.
  Strong<NSData> finish(std::uint64_t root) {
    return makeData(list.finish(dictionaryOf({{"$archiver", list.text("NSKeyedArchiver")},
                                              {"$version", list.integer(std::int64_t{100000})},
                                              {"$top", dictionaryOf({{"root", list.uid(root)}})},
                                              {"$objects", list.array(objects_)}})));
  }

 private:
  Number dictionaryOf(const Values& values) {
    std::vector<Number> keys, numbers;
    for (const auto& [key, value] : values) {
      keys.push_back(list.text(key));
      numbers.push_back(value);
    }
    return list.dictionary(keys, numbers);
  }

  std::vector<Number> objects_;
};

using Uids = Forger::Uids;

inline constexpr std::size_t kMany = 100'000;
inline constexpr std::size_t kHolders = 10'000;
inline const std::string kLong(500'000, 'x');

inline Uids upTo(std::size_t count, const std::function<std::uint64_t(std::size_t)>& uid) {
  Uids uids;
  for (std::size_t i = 0; i < count; ++i) uids.push_back(uid(i));
  return uids;
}

// An archive of an object of `cls` that holds what `uid` gives for 0, 1, ...
inline Strong<NSData> holding(Forger& forger, std::string_view cls, std::size_t count,
                              const std::function<std::uint64_t(std::size_t)>& uid) {
  return forger.finish(forger.row(forger.classNamed(cls), upTo(count, uid)));
}

// An archive of `count` objects of `cls`, all with the same values.
inline Strong<NSData> alike(std::size_t count, std::string_view cls,
                            const std::function<Forger::Values(Forger&)>& makeValues) {
  Forger forger;
  const auto holders = forger.classNamed(cls);
  const Forger::Values values = makeValues(forger);
  return holding(forger, "NSArray", count, [&](std::size_t) { return forger.instance(holders, values); });
}

// Arrays that share their parts: each level expands to twice the one below.
inline Strong<NSData> laughs() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray");
  std::uint64_t all = forger.text("ha");
  for (int level = 0; level < 40; ++level) all = forger.row(arrays, {all, all});
  return holding(forger, "NSSet", 1, [&](std::size_t) { return all; });
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
  return holding(forger, "NSArray", 3 * kMany, [&](std::size_t) { return last = forger.row(arrays, {last}); });
}

// One long text as the part that `key` names.
inline Strong<NSData> longTexts(std::string_view cls, std::string_view key) {
  return alike(kHolders, cls, [key](Forger& forger) {
    const auto large = forger.largeText();
    return Forger::Values{{key, key == "NS.objects" ? forger.references({large}) : forger.list.uid(large)},
                          {"NS.base", forger.list.uid(0)}};
  });
}

inline Strong<NSData> longBases() {
  return alike(kHolders, "NSURL", [](Forger& forger) {
    const auto link = [&](std::uint64_t text, std::uint64_t base) {
      return Forger::Values{{"NS.base", forger.list.uid(base)}, {"NS.relative", forger.list.uid(text)}};
    };
    const auto base = forger.instance(forger.classNamed("NSURL"), link(forger.text("https://h/" + kLong), 0));
    return link(forger.text("d"), base);
  });
}

inline Strong<NSData> longKeys() {
  return alike(kHolders, "NSDictionary", [](Forger& forger) {
    return Forger::Values{{"NS.keys", forger.references({forger.largeText()})},
                          {"NS.objects", forger.references({forger.text("small")})}};
  });
}

// Two large mutable dictionaries as the attributes of many texts of many runs.
inline Strong<NSData> largeAttributes(std::size_t texts, std::size_t runs) {
  return alike(texts, "NSAttributedString", [runs](Forger& forger) {
    const auto dictionaries = forger.classNamed("NSMutableDictionary");
    const auto one = forger.text("1");
    const auto attributes = [&](const std::string& prefix) {
      return forger.dictionary(dictionaries,
                               upTo(5000, [&](std::size_t i) { return forger.text(prefix + std::to_string(i)); }),
                               Uids(5000, one));
    };
    std::vector<std::byte> info;
    for (std::size_t i = 0; i < runs; ++i) info.insert(info.end(), {std::byte{1}, static_cast<std::byte>(i & 1)});
    const auto both = forger.row(forger.classNamed("NSArray"), {attributes("k"), attributes("l")});
    return Forger::Values{{"NSString", forger.list.uid(forger.text(std::string(runs, 'x')))},
                          {"NSAttributes", forger.list.uid(both)},
                          {"NSAttributeInfo", forger.list.uid(forger.add(forger.list.data(info)))}};
  });
}

// All keys of each object are one long text.
inline Strong<NSData> equalKeys(std::string_view cls) {
  Forger forger;
  std::vector<Forger::Number> keys(20'000, forger.list.text(kLong)), values(20'000, forger.list.uid(0));
  keys.push_back(forger.list.text("$class"));
  values.push_back(forger.list.uid(forger.classNamed(cls)));
  return holding(forger, "NSArray", 50, [&](std::size_t) { return forger.add(forger.list.dictionary(keys, values)); });
}

// An array that differs from others by its number, in an array inside, which counts for nothing in its hash.
inline std::uint64_t ofOneHash(Forger& forger, std::uint64_t arrays, std::size_t number, std::uint64_t large) {
  return forger.row(arrays, {forger.row(arrays, {large, forger.text(std::to_string(number))})});
}

inline Strong<NSData> membersOfOneHash() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray");
  const auto large = forger.row(arrays, Uids(10'000, forger.text("x")));
  return holding(forger, "NSSet", kMany + 200, [&](std::size_t i) {
    return i < kMany ? forger.text("small" + std::to_string(i)) : ofOneHash(forger, arrays, i, large);
  });
}

// Sets of sets, all of one hash: comparing two of them is the square of what they hold.
inline Strong<NSData> setsOfSets() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray"), sets = forger.classNamed("NSSet");
  const auto nothing = forger.text("x");
  std::size_t leaf = 0;
  const std::function<std::uint64_t(int)> level = [&](int depth) {
    if (depth == 0) return ofOneHash(forger, arrays, leaf++, nothing);
    return forger.row(sets, upTo(25, [&](std::size_t) { return level(depth - 1); }));
  };
  const auto one = level(3);
  leaf = 0;
  return forger.finish(forger.row(sets, {one, level(3)}));
}

inline Strong<NSData> crowdingNumbers() {
  Forger forger;
  return holding(forger, "NSSet", kMany, [&](std::size_t i) {
    return forger.add(i % 2 ? forger.list.real(0.5 + static_cast<double>(i))
                            : forger.list.integer(static_cast<std::int64_t>(i) << 44));
  });
}

// Records of classes that find their class only behind all of their hints.
inline Strong<NSData> hints() {
  Forger forger;
  std::vector<Forger::Number> names(kMany, forger.list.text("?"));
  names.push_back(forger.list.text("NSNull"));
  const auto all = forger.list.array(names), unknown = forger.list.text(kLong);
  return holding(forger, "NSArray", 1000, [&](std::size_t) {
    return forger.instance(forger.record({{"$classname", unknown}, {"$classhints", all}}), {});
  });
}

inline Strong<NSData> oneTextAsManyObjects() {
  Forger forger;
  const auto text = forger.list.text(kLong);
  return holding(forger, "NSArray", kHolders, [&](std::size_t) { return forger.add(text); });
}

inline Strong<NSData> manyReferences(std::string_view cls) {
  Forger forger;
  const auto text = forger.text("x");
  return holding(forger, cls, 1'000'000, [&](std::size_t) { return text; });
}

inline Strong<NSData> xmlOfArrays() {
  std::string arrays = "<array>";
  for (std::size_t i = 0; i < kMany; ++i) arrays += "<array/>";
  return xmlArchive({"<string>x</string>"}, key("root", uid(1)) + key("more", arrays + "</array>"));
}

}  // namespace havrin::samples
