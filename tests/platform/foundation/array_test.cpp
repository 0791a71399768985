// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/array.h>

using namespace havrin;

namespace {

// "(a, b)" without the comma: what the tests compare.
std::string text(const NSArray& array) {
  std::string all;
  for (NSObject* object : each(array)) all += utf8(*object->description());
  return all;
}

// The least that an array is: the letters from `a` on, made as they are asked for.
class Letters : public Object<Letters, NSArray> {
 public:
  explicit Letters(std::uint64_t number) : number_(number) {}
  std::uint64_t count() const override { return number_; }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override {
    if (index >= number_) throw NSException(NSRangeException, "beyond the letters");
    return s(std::string(1, static_cast<char>('a' + index)));
  }

 private:
  std::uint64_t number_;
};

// The least that a mutable array is, with storage of its own.
class OwnList : public Object<OwnList, NSMutableArray> {
 public:
  std::uint64_t count() const override { return objects_.size(); }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return objects_.at(index); }
  void insertObject(NSObject* object, std::uint64_t index) override {
    objects_.insert(objects_.begin() + static_cast<std::ptrdiff_t>(index), object);
  }
  void removeObjectAtIndex(std::uint64_t index) override {
    objects_.erase(objects_.begin() + static_cast<std::ptrdiff_t>(index));
  }
  void replaceObjectAtIndex(std::uint64_t index, NSObject* object) override { objects_[index] = object; }

 private:
  std::vector<Strong<NSObject>> objects_;
};

// The letters a, b, c, d in every kind of array there is.
struct Kind {
  const char* why;
  Strong<NSArray> array;
};
std::vector<Kind> everyKind() {
  const auto list = letters("abcd");
  const auto own = make<OwnList>();
  own->addObjectsFromArray(list);
  return {{"in one piece", makeArray({s("a"), s("b"), s("c"), s("d")})},
          {"made by adding", letters("ab")->arrayByAddingObject(s("c"))->arrayByAddingObject(s("d"))},
          {"mutable", list},
          {"a copy of a mutable one", list->snapshot()},
          {"a subclass with count and objectAtIndex only", make<Letters>(4U)},
          {"a mutable subclass with storage of its own", own}};
}

}  // namespace

TEST(Array, IsTheSameForEveryKind) {
  for (const Kind& kind : everyKind()) {
    SCOPED_TRACE(kind.why);
    const NSArray& array = *kind.array;
    EXPECT_EQ(array.count(), 4U);
    EXPECT_EQ(utf8(*array.description()), "(a, b, c, d)");
    EXPECT_EQ(text(array.objectAtIndexedSubscript(2)) + text(array.firstObject()) + text(array.lastObject()), "cad");
    EXPECT_EQ(array.indexOfObject(s("c")), 2U);
    EXPECT_EQ(array.indexOfObject(s("z")), kNotFound);
    EXPECT_EQ(array.indexOfObject(nullptr), kNotFound);
    EXPECT_TRUE(array.containsObject(s("d")));
    EXPECT_EQ(text(*array.arrayByAddingObject(s("e"))), "abcde");
    EXPECT_EQ(text(*array.arrayByAddingObjectsFromArray(kind.array)), "abcdabcd");
    EXPECT_EQ(text(*array.arrayByAddingObjectsFromArray(nullptr)), "abcd");
    EXPECT_EQ(text(*array.subarrayWithRange({1, 2})), "bc");
    EXPECT_EQ(text(*array.subarrayWithRange({4, 0})), "");
    EXPECT_EQ(text(*array.objectsAtIndexes(makeIndexSet({3, 0}))), "ad") << "in ascending order";
    for (const Kind& other : everyKind()) {
      EXPECT_TRUE(array.isEqual(other.array)) << other.why;
      EXPECT_EQ(array.hash(), other.array->hash()) << other.why;
    }
    expectEquality(kind.array, {}, {letters("abdc"), letters("abc"), s("a")});
    const auto changed = array.mutableCopy();
    EXPECT_EQ(classOf(*changed).name(), "NSMutableArray");
    static_cast<NSMutableArray&>(*changed).removeLastObject();
    EXPECT_EQ(text(static_cast<NSArray&>(*changed)), "abc");
    EXPECT_EQ(text(array), "abcd") << "nothing above has changed it";
  }
}

TEST(Array, RefusesNullAndOutOfRangeBeforeAnyChange) {
  const std::uint64_t huge = ~std::uint64_t{0};
  for (const Kind& kind : everyKind()) {
    SCOPED_TRACE(kind.why);
    const NSArray& array = *kind.array;
    if (array.isPlain()) {
      EXPECT_EQ(nameOf([&] { (void)array.objectAtIndex(4); }), NSRangeException);
    }
    EXPECT_EQ(nameOf([&] { (void)array.subarrayWithRange({3, 2}); }), NSRangeException);
    EXPECT_EQ(nameOf([&] { (void)array.subarrayWithRange({1, huge}); }), NSRangeException);
    EXPECT_EQ(nameOf([&] { (void)array.objectsAtIndexes(makeIndexSet({0, 4})); }), NSRangeException);
    EXPECT_EQ(nameOf([&] { (void)array.objectsAtIndexes(nullptr); }), NSInvalidArgumentException);
    EXPECT_EQ(nameOf([&] { (void)array.arrayByAddingObject(nullptr); }), NSInvalidArgumentException);
    EXPECT_EQ(nameOf([&] { (void)array.indexesOfObjectsPassingTest(nullptr); }), NSInvalidArgumentException);
    EXPECT_EQ(nameOf([&] { (void)array.indexOfObjectPassingTest(nullptr); }), NSInvalidArgumentException);
    EXPECT_EQ(nameOf([&] { array.enumerateObjectsUsingBlock(nullptr); }), NSInvalidArgumentException);
  }
  const auto list = letters("ab");
  const auto copy = list->snapshot();
  const std::uint64_t changes = list->mutations();
  const NSRange beyond{1, 2};
  const auto beyondIndexes = makeIndexSet(beyond);
  const std::initializer_list<NSObject*> withNull = {list, nullptr};
  const std::pair<std::string_view, std::function<void()>> bad[] = {
      {NSRangeException, [&] { list->insertObject(s("x"), 3); }},
      {NSRangeException, [&] { list->removeObjectAtIndex(2); }},
      {NSRangeException, [&] { list->replaceObjectAtIndex(2, s("x")); }},
      {NSRangeException, [&] { list->exchangeObjectAtIndex(0, 2); }},
      {NSRangeException, [&] { list->exchangeObjectAtIndex(2, 2); }},
      {NSRangeException, [&] { list->removeObjectsInRange(beyond); }},
      {NSRangeException, [&] { list->removeObjectsAtIndexes(beyondIndexes); }},
      {NSInvalidArgumentException, [&] { list->removeObjectsAtIndexes(nullptr); }},
      {NSInvalidArgumentException, [&] { list->addObject(nullptr); }},
      {NSInvalidArgumentException, [&] { list->insertObject(nullptr, 0); }},
      {NSInvalidArgumentException, [&] { list->replaceObjectAtIndex(0, nullptr); }},
      {NSInvalidArgumentException, [&] { (void)makeArray(withNull); }},
  };
  for (const auto& [name, call] : bad) EXPECT_EQ(nameOf(call), name);
  EXPECT_EQ(list->mutations(), changes);
  EXPECT_TRUE(list->isEqual(copy));
}

TEST(MutableArray, ChangesAsAVectorDoes) {
  std::mt19937_64 random = seededGenerator();
  const Strong<NSMutableArray> kinds[] = {make<NSMutableArray>(), make<OwnList>()};
  for (const auto& list : kinds) {
    SCOPED_TRACE(std::string(classOf(*list).name()));
    std::vector<std::string> model;
    std::vector<std::pair<Strong<NSArray>, std::string>> copies;
    const auto at = [&](std::size_t index) { return model.begin() + static_cast<std::ptrdiff_t>(index); };
    for (int step = 0; step < 5000; ++step) {
      const std::string name = std::to_string(step) + ' ';
      const std::size_t i = model.empty() ? 0 : random() % model.size();
      const std::size_t j = model.empty() ? 0 : random() % model.size();
      switch (model.empty() ? 0 : random() % 10) {
        case 0:
          list->addObject(s(name));
          model.push_back(name);
          break;
        case 1:
          list->insertObject(s(name), i);
          model.insert(at(i), name);
          break;
        case 2:
          list->removeObjectAtIndex(i);
          model.erase(at(i));
          break;
        case 3:
          list->replaceObjectAtIndex(i, s(name));
          model[i] = name;
          break;
        case 4:
          list->exchangeObjectAtIndex(i, j);
          std::swap(model[i], model[j]);
          break;
        case 5: {
          std::vector<std::uint64_t> chosen;
          for (std::size_t k = model.size(); k-- > 0;) {
            if (random() % 8 != 0) continue;
            chosen.push_back(k);
            model.erase(at(k));
          }
          list->removeObjectsAtIndexes(makeIndexSet(chosen));
          break;
        }
        case 6: {
          const std::size_t length = std::min<std::size_t>(random() % 4, model.size() - i);
          list->removeObjectsInRange({i, length});
          model.erase(at(i), at(i + length));
          break;
        }
        case 7: {
          const std::vector<std::string> front(model.begin(), at(random() % 2 == 0 ? i : model.size()));
          list->addObjectsFromArray(front.size() < model.size() ? list->subarrayWithRange({0, i}) : list);
          model.insert(model.end(), front.begin(), front.end());
          break;
        }
        default:
          copies.emplace_back(list->snapshot(), text(*list));
          if (copies.size() > 5) copies.erase(copies.begin());
      }
      if (model.size() > 60) {
        list->removeAllObjects();
        model.clear();
      }
      std::string expected;
      for (const std::string& one : model) expected += one;
      ASSERT_EQ(text(*list), expected) << "after step " << step;
      for (const auto& [copy, then] : copies) ASSERT_EQ(text(*copy), then) << "a copy changed at step " << step;
    }
  }
}

TEST(MutableArray, MayBeChangedByAnObjectThatItReleases) {
  class Visitor : public Object<Visitor, NSObject> {
   public:
    explicit Visitor(NSMutableArray* list) : list_(list) {}
    ~Visitor() override { list_->addObject(makeNumber(1)); }
    NSMutableArray* list_;
  };
  const auto list = makeMutableArray({});
  const auto firstAndThird = makeIndexSet({0, 2});
  const std::function<void()> removals[] = {
      [&] { list->removeAllObjects(); },
      [&] { list->removeObjectAtIndex(0); },
      [&] { list->replaceObjectAtIndex(1, s("x")); },
      [&] { list->removeObjectsAtIndexes(firstAndThird); },
  };
  for (const auto& remove : removals) {
    for (int i = 0; i < 3; ++i) list->addObject(make<Visitor>(list));
    const std::uint64_t before = list->count();
    remove();
    EXPECT_LE(list->count(), before);
  }
  list->removeAllObjects();  // of which the visitors among them each add one again
  EXPECT_TRUE(list->lastObject()->isEqual(makeNumber(1)));
}

TEST(FastEnumeration, GoesThroughEveryObjectAndThrowsAfterAChange) {
  EXPECT_EQ(text(*make<Letters>(26U)), "abcdefghijklmnopqrstuvwxyz") << "in batches of sixteen";
  for (NSObject* object : each(Strong<NSArray>())) FAIL() << object;
  EXPECT_THROW(for (NSString* text : eachOf<NSString>(makeArray({makeNumber(1)}))) FAIL() << text, NSException);
  const auto list = letters("ab");
  int steps = 0;
  EXPECT_EQ(nameOf([&] {
              for (NSObject* object : each(list)) {
                steps += object != nullptr;
                list->removeAllObjects();
              }
            }),
            NSGenericException);
  list->addObject(s("a"));
  const auto change = [&](NSString& string, std::uint64_t, bool&) {
    list->removeAllObjects();
    EXPECT_EQ(utf8(string), "a") << "held while the block runs";
    ++steps;
  };
  EXPECT_EQ(nameOf([&] { list->enumerateObjectsUsingBlock(change); }), NSGenericException);
  EXPECT_EQ(steps, 2);
}
