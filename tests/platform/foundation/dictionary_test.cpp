// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/set.h>

#include <map>

using namespace havrin;

namespace {

// Numbers below ten under their own text, kept nowhere.
class Digits : public Object<Digits, NSDictionary> {
 public:
  std::uint64_t count() const override { return 3; }
  Strong<NSObject> objectForKey(const NSObject* key) const override {
    const auto* string = cast<NSString>(key);
    if (!string || string->length() != 1 || string->characterAtIndex(0) > '2') return nullptr;
    return makeNumber(string->integerValue());
  }
  Strong<NSArray> allKeys() const override { return letters("012"); }
};

// Counts what reaches the two primitives.
class Counted : public Object<Counted, NSMutableDictionary> {
 public:
  int set = 0;
  int removed = 0;
  void setObject(NSObject* value, NSObject* key) override {
    ++set;
    NSMutableDictionary::setObject(value, key);
  }
  void removeObjectForKey(NSObject* key) override {
    ++removed;
    NSMutableDictionary::removeObjectForKey(key);
  }
};

}  // namespace

TEST(Dictionary, RefusesNullAndKeysWithoutCopies) {
  const auto dictionary = make<NSMutableDictionary>();
  const auto key = s("key");
  const std::function<void()> misuses[] = {
      [&] { dictionary->setObject(nullptr, key); },
      [&] { dictionary->setObject(key, nullptr); },
      [&] { dictionary->removeObjectForKey(nullptr); },
      [&] { dictionary->setObject(key, make<NSObject>()); },
  };
  for (const auto& misuse : misuses) EXPECT_EQ(nameOf(misuse), NSInvalidArgumentException);
  EXPECT_EQ(nameOf([&] { (void)makeDictionary({{nullptr, key}}); }), NSInvalidArgumentException);
  dictionary->set(key, key);
  dictionary->set(key, nullptr);
  dictionary->set(key, nullptr);
  EXPECT_EQ(dictionary->count(), 0U);
}

TEST(Dictionary, KeepsCopiesOfKeysInTheOrderOfFirstSetting) {
  const auto dictionary = make<NSMutableDictionary>();
  for (const char* key : {"b", "a", "c", "a"}) dictionary->setObject(makeNumber(dictionary->count()), s(key));
  EXPECT_EQ(text(dictionary->allKeys()), "(b, a, c)");
  EXPECT_EQ(text(dictionary->allValues()), "(0, 3, 2)");
  EXPECT_EQ(text(dictionary), "{b = 0; a = 3; c = 2}");
  std::string seen;
  dictionary->forEach([&](NSString& key, NSNumber&) {
    seen += utf8(key);
    return seen.size() < 2;
  });
  EXPECT_EQ(seen, "ba");

  const auto key = make<NSMutableString>("d");
  dictionary->setObject(make<NSObject>(), key);
  key->append("e");
  EXPECT_FALSE(dictionary->objectForKey(key)) << "the key was copied";
  const Weak<NSObject> value = dictionary->objectForKey(s("d"));
  EXPECT_TRUE(value.lock());
  dictionary->removeObjectForKey(s("d"));
  EXPECT_FALSE(value.lock());
}

TEST(Dictionary, EnumeratesItsKeysAndThrowsAfterAChange) {
  const auto dictionary = make<NSMutableDictionary>();
  for (int i = 0; i < 40; ++i) dictionary->setObject(makeNumber(i), makeNumber(i));
  std::int64_t next = 0;
  for (NSObject* key : each(dictionary)) EXPECT_EQ(cast<NSNumber>(key)->integerValue(), next++);
  EXPECT_EQ(next, 40);
  for (NSObject* key : each(dictionary)) dictionary->setObject(key, key);  // a new value does not change the keys
  const auto more = makeDictionary({{s("new"), s("new")}});
  EXPECT_EQ(nameOf([&] {
              for (NSObject* key : each(dictionary)) dictionary->addEntriesFromDictionary(key ? more : nullptr);
            }),
            NSGenericException);
  EXPECT_EQ(nameOf([&] {
              for (NSObject* key : each(dictionary)) dictionary->removeObjectForKey(key);
            }),
            NSGenericException);
  EXPECT_EQ(nameOf([&] {
              dictionary->forEach([&](NSObject*, NSObject*) {
                dictionary->removeAllObjects();
                return true;
              });
            }),
            NSGenericException);
  EXPECT_EQ(dictionary->count(), 0U);
  for (NSObject* key : each(make<Digits>())) next -= cast<NSString>(key)->integerValue();
  EXPECT_EQ(next, 37);
}

TEST(Dictionary, IsFoundInASetWithoutComparingAllMembers) {
  static int compared = 0;
  struct Compared : Object<Compared, NSObject> {
    explicit Compared(std::uint64_t itsNumber) : number(itsNumber) {}
    bool isEqual(const NSObject* other) const override {
      ++compared;
      return cast<Compared>(other)->number == number;
    }
    std::uint64_t hash() const override { return number; }
    std::uint64_t number;
  };
  const auto wrapped = [key = s("key")](int kind, std::uint64_t number) -> Strong<NSObject> {
    const auto value = make<Compared>(number);
    if (kind == 0) return makeDictionary({{key, value}});
    if (kind == 1) return makeArray({key, value});
    return makeSet({key, value});
  };
  for (int kind = 0; kind < 3; ++kind) {
    compared = 0;
    const auto members = make<NSMutableSet>();
    for (std::uint64_t number = 0; number < 500; ++number) members->addObject(wrapped(kind, number));
    EXPECT_LT(compared, 500);
    EXPECT_TRUE(members->containsObject(wrapped(kind, 77)));
  }
}

TEST(Dictionary, UsesThePrimitivesOfASubclass) {
  const auto digits = make<Digits>();
  EXPECT_EQ(text(digits), "{0 = 0; 1 = 1; 2 = 2}");
  const Strong<NSObject> copied = digits->mutableCopy();
  EXPECT_TRUE(digits->isEqual(copied) && copied->isEqual(digits));
  const auto counted = make<Counted>();
  counted->addEntriesFromDictionary(digits);
  EXPECT_TRUE(counted->isEqual(digits));
  counted->removeAllObjects();
  EXPECT_EQ(text(counted), "{}");
  EXPECT_EQ(counted->set, 3);
  EXPECT_EQ(counted->removed, 3);
}

// Against the standard map, with keys that collide and come back after removal.
TEST(Dictionary, AgreesWithAMapThroughRandomChanges) {
  auto random = seededGenerator();
  const auto dictionary = make<NSMutableDictionary>();
  std::map<std::int64_t, std::int64_t> model;
  for (int step = 0; step < 20000; ++step) {
    const auto number = static_cast<std::int64_t>(random() % (step < 10000 ? 40 : 4000));
    const Strong<NSNumber> key = makeNumber(number << (number % 3 * 20));
    if (random() % 3 == 0) {
      dictionary->removeObjectForKey(key);
      model.erase(key->integerValue());
    } else {
      dictionary->setObject(makeNumber(step), key);
      model[key->integerValue()] = step;
    }
    ASSERT_EQ(dictionary->count(), model.size());
    const auto expected = model.find(number);
    ASSERT_EQ(text(dictionary->objectForKey(makeNumber(number))),
              expected == model.end() ? "nil" : std::to_string(expected->second));
  }
  std::map<std::int64_t, std::int64_t> visited;
  dictionary->forEach(
      [&](NSNumber& key, NSNumber& value) { return visited.emplace(key.integerValue(), value.integerValue()).second; });
  EXPECT_EQ(visited, model);
}
