// SPDX-License-Identifier: Apache-2.0
// Archives that are small and stand for much, or nest, or crowd together: each is made for one bound of their reader.
#pragma once

#include "archive_forger.h"

namespace havrin::samples {

using Uids = Forger::Uids;

inline Uids repeated(std::uint64_t uid, std::size_t count) { return Uids(count, uid); }

inline Uids upTo(std::size_t count, const std::function<std::uint64_t(std::size_t)>& uid) {
  Uids uids;
  for (std::size_t i = 0; i < count; ++i) uids.push_back(uid(i));
  return uids;
}

// Arrays inside arrays, each before the one that it is in.
inline std::uint64_t nest(Forger& forger, std::uint64_t cls, std::size_t depth, std::uint64_t innermost) {
  for (std::size_t i = 0; i < depth; ++i) innermost = forger.row(cls, {innermost});
  return innermost;
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
  return forger.finish(nest(forger, arrays, 1'000'000, forger.text("in")));
}

// Each link of the chain is made before the next one holds it: nothing nests while it is read.
inline Strong<NSData> chain(std::string_view cls, std::size_t length) {
  Forger forger;
  const auto arrays = forger.classNamed(cls);
  std::uint64_t last = forger.text("first");
  const Uids all = upTo(length, [&](std::size_t) { return last = forger.row(arrays, {last}); });
  return forger.finish(forger.row(forger.classNamed("NSArray"), all));
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
inline Strong<NSData> sharedBy(std::size_t count, std::string_view cls, Make make) {
  Forger forger;
  const auto holders = forger.classNamed(cls);
  const auto strings = forger.classNamed("NSMutableString");
  const auto large = forger.instance(strings, {{"NS.string", forger.list.text(kLong)}});
  const auto small = forger.text("small");
  const Uids all = upTo(count, [&](std::size_t) { return make(forger, holders, large, small); });
  return forger.finish(forger.row(forger.classNamed("NSArray"), all));
}

inline Strong<NSData> longTexts(std::string_view cls) {
  return sharedBy(kHolders, cls, [](Forger& forger, std::uint64_t holders, std::uint64_t large, std::uint64_t small) {
    return forger.instance(holders, {{"NS.objects", forger.references({large})},
                                     {"NS.relative", forger.list.uid(large)},
                                     {"NSString", forger.list.uid(large)},
                                     {"NS.string", forger.list.uid(large)},
                                     {"NS.base", forger.list.uid(0)},
                                     {"small", forger.list.uid(small)}});
  });
}

// One immutable text, which all may share.
inline Strong<NSData> sharedText() {
  Forger forger;
  const auto cls = forger.classNamed("NSAttributedString");
  const auto text = forger.text(kLong);
  return forger.finish(forger.row(forger.classNamed("NSArray"), upTo(200, [&](std::size_t) {
                                    return forger.instance(cls, {{"NSString", forger.list.uid(text)}});
                                  })));
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
  return sharedBy(kHolders, "NSDictionary",
                  [](Forger& forger, std::uint64_t holders, std::uint64_t large, std::uint64_t small) {
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

inline Strong<NSData> manyRuns() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray"), dictionaries = forger.classNamed("NSDictionary");
  const auto key = forger.text("NSFont");
  const auto sized = [&](std::int64_t size) {
    return forger.dictionary(dictionaries, {key}, {forger.add(forger.list.integer(size))});
  };
  const auto attributes = forger.row(arrays, {sized(9), sized(12), sized(9)});
  std::vector<std::byte> bytes;
  for (std::size_t i = 0; i < 3 * kMany; ++i) bytes.insert(bytes.end(), {std::byte{1}, static_cast<std::byte>(i % 3)});
  return forger.finish(forger.instance(forger.classNamed("NSAttributedString"),
                                       {{"NSString", forger.list.uid(forger.text(std::string(3 * kMany, 'x')))},
                                        {"NSAttributes", forger.list.uid(attributes)},
                                        {"NSAttributeInfo", forger.list.uid(forger.add(forger.list.data(bytes)))}}));
}

// All keys of each object are one long text.
inline Strong<NSData> widest(std::string_view cls, bool isWide) {
  Forger forger;
  const auto holders = forger.classNamed(cls);
  const auto key = isWide ? forger.list.text(std::u16string(kLong.size(), u'\u00FC')) : forger.list.text(kLong);
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

inline Strong<NSData> membersOfOneHash(std::size_t count, std::size_t small) {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray"), sets = forger.classNamed("NSSet");
  const auto large = forger.row(arrays, repeated(forger.text("x"), 10'000));
  Uids all = upTo(small, [&](std::size_t i) { return forger.text("small" + std::to_string(i)); });
  for (std::size_t i = 0; i < count; ++i) all.push_back(alike(forger, arrays, i, large));
  return forger.finish(forger.row(sets, all));
}

// Sets of sets, `width` in each, all of one hash: comparing two of them is the square of what they hold.
inline Strong<NSData> setsOfSets(std::size_t width) {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray"), sets = forger.classNamed("NSSet");
  const auto nothing = forger.text("x");
  std::size_t leaf = 0;
  const std::function<std::uint64_t(int)> level = [&](int depth) {
    if (depth == 0) return alike(forger, arrays, leaf++, nothing);
    return forger.row(sets, upTo(width, [&](std::size_t) { return level(depth - 1); }));
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
inline Strong<NSData> hints(std::size_t records) {
  Forger forger;
  std::vector<Forger::Number> names(kMany, forger.list.text("?"));
  names.push_back(forger.list.text("NSNull"));
  const auto all = forger.list.array(names), long_ = forger.list.text(kLong);
  const Uids nulls = upTo(records, [&](std::size_t) {
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

inline Strong<NSData> xmlNest(std::size_t depth) {
  std::vector<std::string> objects;
  for (std::size_t i = 1; i <= depth; ++i) objects.push_back(object(depth + 1, key("NS.objects", references({i + 1}))));
  objects.push_back(classRecord("NSArray"));
  return xmlArchive(objects);
}

inline Strong<NSData> xmlLaughs() {
  std::vector<std::string> objects;
  for (std::size_t i = 1; i <= 40; ++i) objects.push_back(object(41, key("NS.objects", references({i + 1, i + 1}))));
  objects[39] = "<string>ha</string>";
  objects.push_back(classRecord("NSArray"));
  return xmlArchive(objects);
}

inline Strong<NSData> xmlOfArrays() {
  std::string arrays = "<array>";
  for (std::size_t i = 0; i < kMany; ++i) arrays += "<array/>";
  return xmlArchive({"<string>x</string>"}, key("root", uid(1)) + key("more", arrays + "</array>"));
}

}  // namespace havrin::samples
