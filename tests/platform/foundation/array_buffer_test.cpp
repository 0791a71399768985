// What arrays share: which additions copy, how long elements live, and that threads may share too.
#include <HavrinFoundation/platform/foundation/array_buffer.h>

#include <latch>
#include <thread>
#include <vector>

#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <gtest/gtest.h>

using namespace havrin;

namespace {

std::int64_t value(const NSArray& array, std::uint64_t index) {
  return static_cast<NSNumber*>(array.objectAtIndex(index).get())->integerValue();
}

// An array of 0, 1, ... made by additions, so that it is at the end of a buffer with room.
Strong<NSArray> grown(std::int64_t count) {
  Strong<NSArray> array = makeArray({});
  for (std::int64_t i = 0; i < count; ++i) array = array->arrayByAddingObject(makeNumber(i));
  return array;
}

}  // namespace

TEST(ArrayBuffer, CopiesALinearNumberOfSlotsInAChain) {
  for (const std::int64_t n : {100, 1000, 100'000}) {
    const std::uint64_t before = arraySlotsCopied();
    const auto array = grown(n);
    EXPECT_LE(arraySlotsCopied() - before, static_cast<std::uint64_t>(2 * n)) << n;
    for (std::int64_t i = 0; i < n; ++i) ASSERT_EQ(value(*array, static_cast<std::uint64_t>(i)), i);
    EXPECT_EQ(array->elements().size(), static_cast<std::size_t>(n));
  }
}

TEST(ArrayBuffer, LeavesEarlierArraysAsTheyWere) {
  const auto base = grown(5);
  const std::uint64_t before = arraySlotsCopied();
  const auto first = base->arrayByAddingObject(makeNumber(10));
  EXPECT_EQ(arraySlotsCopied(), before) << "the next slot was free";
  const auto second = base->arrayByAddingObject(makeNumber(20));
  EXPECT_EQ(arraySlotsCopied(), before + 5) << "it was taken";
  const auto longer = first->arrayByAddingObject(makeNumber(11));
  EXPECT_EQ(base->count(), 5U);
  EXPECT_EQ(value(*first, 5), 10);
  EXPECT_EQ(value(*second, 5), 20);
  EXPECT_EQ(value(*longer, 6), 11);
}

TEST(ArrayBuffer, KeepsNoObjectThatNoArrayHolds) {
  const auto base = grown(5);
  Weak<NSObject> added;
  {
    const auto object = makeNumber(7);
    added = object;
    auto longer = base->arrayByAddingObject(object);
    auto longest = longer->arrayByAddingObject(object)->arrayByAddingObjectsFromArray(grown(40));
    longer = nullptr;
    EXPECT_TRUE(added.lock());
  }
  EXPECT_FALSE(added.lock()) << "the array it was added to is gone, the one before it lives";
  const std::uint64_t before = arraySlotsCopied();
  EXPECT_EQ(value(*base->arrayByAddingObject(makeNumber(9)), 5), 9);
  EXPECT_EQ(arraySlotsCopied(), before) << "the slot is free again";
}

TEST(ArrayBuffer, ReleasesALongTailInTurns) {
  const auto base = grown(3);
  std::vector<Weak<NSObject>> tail;
  {
    Strong<NSMutableArray> more = make<NSMutableArray>();
    for (int i = 0; i < 100; ++i) {
      const auto number = makeNumber(i);
      tail.push_back(number);
      more->addObject(number);
    }
    Strong<NSArray> roomy = base;
    for (int i = 0; i < 200; ++i) roomy = roomy->arrayByAddingObject(makeNumber(i));
    const auto longer = roomy->arrayByAddingObjectsFromArray(more);
    more = nullptr;
    roomy = nullptr;
    EXPECT_TRUE(tail.front().lock() && tail.back().lock());
  }
  for (const auto& object : tail) EXPECT_FALSE(object.lock());
}

TEST(ArrayBuffer, IsSharedByTheCopyOfAMutableArrayUntilOneOfThemDiffers) {
  const auto list = makeMutableArray({});
  for (int i = 0; i < 1000; ++i) list->addObject(makeNumber(i));
  const std::uint64_t before = arraySlotsCopied();
  const auto copy = list->snapshot();
  EXPECT_EQ(copy->elements().data(), list->elements().data());
  list->addObject(makeNumber(1000));
  list->removeLastObject();
  list->removeLastObject();
  EXPECT_EQ(arraySlotsCopied(), before) << "both ends move without a copy";
  list->replaceObjectAtIndex(0, makeNumber(-1));
  EXPECT_EQ(arraySlotsCopied(), before + 999);
  list->replaceObjectAtIndex(1, makeNumber(-2));
  EXPECT_EQ(arraySlotsCopied(), before + 999) << "and once only";
  EXPECT_EQ(copy->count(), 1000U);
  EXPECT_EQ(value(*copy, 0), 0);
  EXPECT_EQ(value(*copy, 999), 999);
  EXPECT_EQ(list->count(), 999U);
  EXPECT_EQ(value(*list, 0), -1);
}

TEST(ArrayBuffer, LetsThreadsAddToOneArrayAndDropWhatTheyMade) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 2000;
  const auto base = grown(11);
  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      for (int round = 0; round < kRounds; ++round) {
        Strong<NSArray> mine = base;
        for (int i = 0; i < 5; ++i) mine = mine->arrayByAddingObject(makeNumber(t * 100 + i));
        for (std::uint64_t i = 0; i < 16; ++i) {
          ASSERT_EQ(value(*mine, i), i < 11 ? static_cast<int>(i) : t * 100 + static_cast<int>(i) - 11);
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(base->count(), 11U);
  const std::uint64_t before = arraySlotsCopied();
  EXPECT_EQ(base->arrayByAddingObject(makeNumber(1))->count(), 12U);
  EXPECT_EQ(arraySlotsCopied(), before) << "everything was given back";
}
