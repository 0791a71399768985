// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/foundation/set.h>

using namespace havrin;

namespace {

constexpr int kDeep = 100'000;

Strong<NSObject> nested(NSObject* innermost, const std::function<Strong<NSObject>(NSObject*)>& wrap,
                        int depth = kDeep) {
  Strong<NSObject> object(innermost);
  for (int i = 0; i < depth; ++i) object = wrap(object);
  return object;
}

TEST(CollectionNesting, ComparesHashesAndDescribesInBoundedStack) {
  const auto one = makeNumber(1), x = makeNumber(2);
  const auto empty = makeArray({});
  const auto entry = [](NSObject* key, NSObject* value) {
    const auto dictionary = make<NSMutableDictionary>();
    dictionary->setObject(value, key);
    return dictionary->copy();
  };
  for (const auto& [why, wrap] : Rows<const char*, std::function<Strong<NSObject>(NSObject*)>>{
           {"arrays", [](NSObject* inner) { return makeArray({inner}); }},
           {"arrays of three",
            [&](NSObject* inner) {
              return makeArray({empty, inner, x});
            }},
           {"ordered sets", [](NSObject* inner) { return makeOrderedSet({inner}); }},
           {"dictionaries", [&](NSObject* inner) { return entry(x, inner); }},
           {"keys", [&](NSObject* inner) { return entry(inner, one); }},
           {"sets",
            [&](NSObject* inner) {
              return makeSet({x, inner});
            }},
           {"members of one hash",
            [&](NSObject* inner) {
              return makeSet({makeArray({inner}), makeArray({empty})});
            }},
       }) {
    SCOPED_TRACE(why);
    const auto first = nested(makeString("end"), wrap);
    const auto same = nested(make<NSMutableString>("end"), wrap);
    EXPECT_TRUE(first->isEqual(same));
    EXPECT_EQ(first->hash(), same->hash());
    EXPECT_FALSE(first->isEqual(nested(makeString("other"), wrap)));
    EXPECT_FALSE(first->isEqual(nested(makeString("end"), wrap, kDeep - 1)));
    const std::string description = utf8(*first->description());
    EXPECT_LT(description.size(), 4'000u);
    EXPECT_NE(description.find("..."), std::string::npos);
    EXPECT_EQ(utf8(*nested(makeString("end"), wrap, 20)->description()).find("..."), std::string::npos);
  }
}

TEST(CollectionNesting, ComparesArraysThatHoldThemselves) {
  const auto cycle = [](NSObject* element) {
    auto array = make<NSMutableArray>();
    array->addObject(makeArray({array, element}));
    return array;
  };
  const auto first = cycle(makeNumber(1));
  const auto same = cycle(makeNumber(1));
  const auto other = cycle(makeNumber(2));
  EXPECT_TRUE(first->isEqual(same));
  EXPECT_FALSE(first->isEqual(other));
  for (const auto& array : {first, same, other}) array->removeAllObjects();
}

}  // namespace
