// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/platform/base/random.h>

using namespace havrin;

namespace {

// Returns the given numbers, and notes the bounds that were asked for.
struct Draws : RandomSource {
  explicit Draws(std::vector<std::uint32_t> numbers) : numbers_(std::move(numbers)) { installRandomSource(this); }
  ~Draws() override { installRandomSource(nullptr); }
  std::uint32_t uniform(std::uint32_t bound) override {
    bounds_.push_back(bound);
    return numbers_.at(bounds_.size() - 1);
  }
  bool fill(std::uint64_t&) override { return false; }

  std::vector<std::uint32_t> numbers_, bounds_;
};

// Notes the changes made to it. A mutable copy is the array itself.
class Watched : public Object<Watched, NSMutableArray> {
 public:
  void exchangeObjectAtIndex(std::uint64_t index, std::uint64_t otherIndex) override {
    log_ += std::to_string(index) + "<>" + std::to_string(otherIndex) + " ";
    NSMutableArray::exchangeObjectAtIndex(index, otherIndex);
  }
  void insertObject(NSObject* object, std::uint64_t index) override {
    log_ += "insert" + std::to_string(index) + " ";
    NSMutableArray::insertObject(object, index);
  }
  void removeObjectsAtIndexes(const NSIndexSet* indexes) override {
    log_ += "remove" + text(indexes) + " ";
    NSMutableArray::removeObjectsAtIndexes(indexes);
  }
  Strong<NSObject> mutableCopy() const override { return Strong<NSObject>(const_cast<Watched*>(this)); }
  Strong<NSArray> removeFromIndex(std::int64_t index) {
    log_ += "from" + std::to_string(index) + " ";
    return sendSuper<"removeObjectsFromIndex:">(*this, index);
  }
  using Members = List<Method<"removeObjectsFromIndex:", &Watched::removeFromIndex>>;
  std::string log() { return std::exchange(log_, ""); }

 private:
  std::string log_;
};
Strong<Watched> watched(std::string_view word) {
  auto list = make<Watched>();
  list->addObjectsFromArray(letters(word));
  (void)list->log();
  return list;
}

}  // namespace

TEST(CollectionHelpers, PickTheElementAtADrawnIndex) {
  EXPECT_FALSE(send<"hav_randomObject">(makeArray({})));
  const auto abc = letters("abc");
  Draws draws({2, 0, 1});
  for (const char* expected : {"c", "a", "b"}) EXPECT_EQ(text(send<"hav_randomObject">(abc)), expected);
  EXPECT_EQ(draws.bounds_, (std::vector<std::uint32_t>{3, 3, 3}));
}

TEST(CollectionHelpers, CutAnArrayAtAnIndex) {
  constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
  for (const auto& [index, kept, rest] :
       Rows<std::int64_t, const char*, const char*>{{2, "(a, b)", "(c, d)"},
                                                    {3, "(a, b, c)", "(d)"},
                                                    {0, "()", "(a, b, c, d)"},
                                                    {kLowest, "()", "(a, b, c, d)"},
                                                    {4, "(a, b, c, d)", "()"},
                                                    {kHighest, "(a, b, c, d)", "()"}}) {
    SCOPED_TRACE(index);
    const auto list = letters("abcd");
    const auto before = list->snapshot();
    EXPECT_EQ(text(send<"arrayByRemovingObjectsFromIndex:">(list, index)), kept);
    EXPECT_EQ(text(list), "(a, b, c, d)") << "the receiver is as it was";
    const auto removed = send<"removeObjectsFromIndex:">(list, index);
    EXPECT_EQ(text(removed), rest);
    EXPECT_EQ(classOf(*removed).name(), "NSArray");
    EXPECT_EQ(text(list), kept);
    EXPECT_EQ(text(before), "(a, b, c, d)");
  }
  const auto list = watched("ab");
  EXPECT_EQ(text(send<"arrayByRemovingObjectsFromIndex:">(list, 0)), "()");
  EXPECT_EQ(list->log().find("from0 "), 0U) << "the copy is sent removeObjectsFromIndex:";
}

TEST(CollectionHelpers, CombineArraysUpToTheFirstNull) {
  const auto xy = letters("xy");
  const Strong<NSArray> z = letters("z");
  const Strong<NSArray> none;
  const auto combine = [](const auto& arrays) {
    return send<"arrayByCombiningElementsOfArrays:">(classOf<NSMutableArray>(), arrays);
  };
  EXPECT_EQ(text(combine(nilTerminated(xy, z, xy, nullptr))), "(x, y, z, x, y)");
  EXPECT_EQ(text(combine(nilTerminated(z, none, xy, nullptr))), "(z)");
  EXPECT_EQ(text(combine(nilTerminated(nullptr))), "()");
  const auto combined = combine(nilTerminated(xy, nullptr));
  EXPECT_EQ(classOf(*combined).name(), "NSArray");
  xy->removeAllObjects();
  EXPECT_EQ(text(combined), "(x, y)");
}

TEST(CollectionHelpers, ShuffleWithOneDrawAndOneExchangePerElementButTheLast) {
  for (const auto& [word, numbers, bounds, log, after] :
       Rows<const char*, std::vector<std::uint32_t>, std::vector<std::uint32_t>, const char*, const char*>{
           {"abcde", {2, 0, 1, 1}, {5, 4, 3, 2}, "0<>2 1<>1 2<>3 3<>4 ", "(c, b, d, e, a)"}, {"", {}, {}, "", "()"}}) {
    SCOPED_TRACE(after);
    Draws draws(numbers);
    const auto list = watched(word);
    send<"shuffle">(list);
    EXPECT_EQ(draws.bounds_, bounds);
    EXPECT_EQ(list->log(), log) << "also where an element stays";
    EXPECT_EQ(text(list), after);
  }
}

TEST(CollectionHelpers, InsertAnObjectUnlessItIsThereOrNull) {
  for (const auto& [object, preferred, index, after, log] :
       Rows<const char*, std::uint64_t, std::uint64_t, const char*, const char*>{
           {"b", 0, 1, "(a, b, c)", ""},
           {"x", 0, 0, "(x, a, b, c)", "insert0 "},
           {"x", 2, 2, "(a, b, x, c)", "insert2 "},
           {"x", ~std::uint64_t{0}, 3, "(a, b, c, x)", "insert3 "}}) {
    SCOPED_TRACE(after);
    const auto list = watched("abc");
    EXPECT_EQ(send<"uniqueInsertObject:atPreferredIdx:">(list, s(object), preferred), index);
    EXPECT_EQ(text(list), after);
    EXPECT_EQ(list->log(), log);
  }
  const auto list = letters("abc");
  EXPECT_EQ(nameOf([&] { (void)send<"uniqueInsertObject:atPreferredIdx:">(list, nullptr, 0); }),
            NSInvalidArgumentException);
  send<"safeAddObject:">(list, nullptr);
  send<"safeAddObject:">(list, s("d"));
  EXPECT_EQ(text(list), "(a, b, c, d)");
}

TEST(CollectionHelpers, RemoveAllElementsOfAnotherArrayInOneStep) {
  for (const auto& [word, unwanted, after, positions] : Rows<const char*, const char*, const char*, const char*>{
           {"abad", "az", "(b, d)", "(0 2)"}, {"abad", "", "(a, b, a, d)", "()"}, {"abad", "adb", "()", "(0-3)"}}) {
    const auto list = watched(word);
    EXPECT_EQ(text(send<"hav_removeObjectsInArray:">(list, letters(unwanted))), positions);
    EXPECT_EQ(text(list), after);
    EXPECT_EQ(list->log(), "remove" + std::string(positions) + " ");
  }
  const auto list = letters("abc");
  EXPECT_EQ(send<"hav_removeObjectsInArray:">(list, nullptr)->count(), 0U);
  EXPECT_EQ(send<"hav_removeObjectsInArray:">(list, list)->count(), 3U);
  EXPECT_EQ(text(list), "()");
}
