// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/collections/set_blocks_messages.h>

using namespace havrin;

namespace {

bool isOdd(const NSNumber& number) { return number.integerValue() % 2 != 0; }
Strong<NSObject> sameForAll(NSObject*) { return makeString("same"); }
Strong<NSObject> oddOrNull(const NSNumber& number) {
  return isOdd(number) ? Strong<NSObject>(makeNumber(number.integerValue())) : nullptr;
}

int made = 0;  // by the factory methods of the two classes that follow

struct MySet : Object<MySet, NSMutableSet> {
  static Strong<NSSet> setWithSet(ClassOf<MySet> self, NSSet* set) {
    ++made;
    return NSSet::setWithSet(self, set);
  }
  using ClassMembers = List<ClassMethod<"setWithSet:", &MySet::setWithSet>>;
};

struct MyOrderedSet : Object<MyOrderedSet, NSOrderedSet> {
  static Strong<NSOrderedSet> orderedSetWithArray(ClassOf<MyOrderedSet> self, NSArray* array) {
    ++made;
    return NSOrderedSet::orderedSetWithArray(self, array);
  }
  using ClassMembers = List<ClassMethod<"orderedSetWithArray:", &MyOrderedSet::orderedSetWithArray>>;
};

TEST(SetBlocks, FilterIntoTheReceiversOwnClass) {
  const Strong<NSSet> set = makeSet({makeNumber(1), makeNumber(2), makeNumber(3), makeNumber(4), makeNumber(5)});
  const Strong<MySet> mine = send<"setWithSet:">(classOf<MySet>(), set);
  made = 0;
  for (const Strong<NSSet>& receiver : {set, Strong<NSSet>(mine)}) {
    const Strong<NSSet> odd = send<"select:">(receiver, isOdd);
    EXPECT_EQ(classOf(*odd), classOf(*receiver));
    EXPECT_TRUE(odd->isEqual(makeSet({makeNumber(1), makeNumber(3), makeNumber(5)})));
    EXPECT_TRUE(send<"reject:">(receiver, isOdd)->isEqual(makeSet({makeNumber(2), makeNumber(4)})));
    EXPECT_TRUE(receiver->isEqual(set)) << "the receiver stays as it was";
    EXPECT_EQ(text(send<"map:">(receiver, sameForAll)), "(same, same, same, same, same)");
    EXPECT_EQ(send<"compactMap:">(receiver, oddOrNull)->count(), 3U);
    EXPECT_TRUE(send<"map:">(receiver, oddOrNull)->containsObject(NSNull::null()));
  }
  EXPECT_EQ(made, 2);
}

TEST(SetBlocks, KeepTheOrderOfOrderedSets) {
  const Strong<NSOrderedSet> set =
      makeOrderedSet({makeNumber(5), makeNumber(2), makeNumber(1), makeNumber(2), makeNumber(4)});
  const Strong<MyOrderedSet> mine = send<"orderedSetWithArray:">(classOf<MyOrderedSet>(), set->array());
  made = 0;
  for (const Strong<NSOrderedSet>& receiver : {set, Strong<NSOrderedSet>(mine)}) {
    SCOPED_TRACE(std::string(classOf(*receiver).name()));
    const Strong<NSOrderedSet> odd = send<"select:">(receiver, isOdd);
    EXPECT_EQ(classOf(*odd), classOf(*receiver));
    std::string order;
    for (NSObject* number : each(odd)) order += text(number);
    EXPECT_EQ(order, "51");
    EXPECT_EQ(text(send<"reject:">(receiver, isOdd)->array()), "(2, 4)");
    EXPECT_EQ(text(send<"compactMap:">(receiver, oddOrNull)), "(5, 1)");
    EXPECT_EQ(text(send<"map:">(receiver, sameForAll)), "(same, same, same, same)") << "results are not made unique";
  }
  EXPECT_EQ(made, 2);
}

TEST(Sets, HoldEqualObjectsOnceAndKeepTheFirst) {
  const auto first = s("a");
  const auto set = make<NSMutableSet>();
  set->addObject(first);
  set->addObject(s("a"));
  send<"safeAddObject:">(set, nullptr);
  EXPECT_EQ(set->member(s("a")).get(), first.get());
  EXPECT_EQ(set->count(), 1U);
  send<"safeAddObject:">(set, s("b"));
  EXPECT_TRUE(set->isEqual(makeSet({s("b"), s("a")})));
  EXPECT_FALSE(set->isEqual(letters("ab")));
  const auto copy = Strong<NSObject>(set->copy());
  set->removeObject(s("a"));
  EXPECT_EQ(cast<NSSet>(copy.get())->count(), 2U);
  EXPECT_EQ(nameOf([&] { set->addObject(nullptr); }), NSInvalidArgumentException);
  EXPECT_EQ(nameOf([&] {
              for (NSObject* object : each(set)) set->removeObject(object);
            }),
            NSGenericException);
  set->addObject(s("c"));
  EXPECT_EQ(nameOf([&] {
              for (NSObject* object : each(set)) set->addObject(s(text(object) + "!"));
            }),
            NSGenericException);
  EXPECT_TRUE(makeSet({classOf<NSString>()})->containsObject(classOf<NSString>())) << "classes are objects";
}

TEST(OrderedSets, KeepTheFirstOfEqualObjectsAndShowTheirArrayLive) {
  const auto set = make<NSMutableOrderedSet>();
  for (const std::int64_t value : {3, 1, 3, 2}) set->addObject(makeNumber(value));
  const Strong<NSArray> array = set->array();
  EXPECT_EQ(text(array), "(3, 1, 2)");
  set->insertObject(makeNumber(9), 1);
  set->removeObject(makeNumber(2));
  EXPECT_EQ(text(array), "(3, 9, 1)");
  EXPECT_EQ(set->indexOfObject(makeNumber(1)), 2U);
  EXPECT_EQ(set->indexOfObject(makeNumber(7)), kNotFound);
  const Strong<NSObject> fixed = set->copy();
  set->removeObjectAtIndex(0);
  EXPECT_FALSE(fixed->isEqual(array));
  EXPECT_TRUE(fixed->isEqual(makeOrderedSet({makeNumber(3), makeNumber(9), makeNumber(1)})));
  EXPECT_EQ(nameOf([&] { set->insertObject(makeNumber(1), 9); }), NSRangeException);
  EXPECT_EQ(nameOf([&] { set->removeObjectAtIndex(2); }), NSRangeException);
  EXPECT_EQ(nameOf([&] { (void)set->objectAtIndex(2); }), NSRangeException);
  EXPECT_EQ(nameOf([&] { set->addObject(nullptr); }), NSInvalidArgumentException);
}

}  // namespace
