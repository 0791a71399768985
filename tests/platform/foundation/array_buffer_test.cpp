// SPDX-License-Identifier: Apache-2.0
// What arrays share: which additions copy, how long elements live, and that threads may share too.
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/array_buffer.h>

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
  for (const std::int64_t n : {100, 100'000}) {
    const std::uint64_t before = arraySlotsCopied();
    const auto array = grown(n);
    EXPECT_LE(arraySlotsCopied() - before, static_cast<std::uint64_t>(2 * n)) << n;
    for (std::int64_t i = 0; i < n; ++i) ASSERT_EQ(value(*array, static_cast<std::uint64_t>(i)), i);
  }
}

TEST(ArrayBuffer, ReusesTheNextSlotAndReleasesItWithItsArray) {
  const auto base = grown(5);
  const std::uint64_t before = arraySlotsCopied();
  Weak<NSObject> last;
  {
    const auto first = base->arrayByAddingObject(makeNumber(10));
    EXPECT_EQ(arraySlotsCopied(), before) << "the next slot was free";
    const auto second = base->arrayByAddingObject(makeNumber(20));
    EXPECT_EQ(arraySlotsCopied(), before + 5) << "it was taken";
    const auto longest = first->arrayByAddingObjectsFromArray(grown(200));
    last = longest->lastObject();
    EXPECT_EQ(base->count(), 5U);
    EXPECT_EQ(value(*first, 5), 10);
    EXPECT_EQ(value(*second, 5), 20);
    EXPECT_TRUE(last.lock());
  }
  EXPECT_FALSE(last.lock()) << "its array is gone, the one before it lives";
  const std::uint64_t after = arraySlotsCopied();
  EXPECT_EQ(value(*base->arrayByAddingObject(makeNumber(9)), 5), 9);
  EXPECT_EQ(arraySlotsCopied(), after) << "the slot is free again";
}

TEST(ArrayBuffer, IsSharedByACopyUntilAnElementIsReplaced) {
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
  list->replaceObjectAtIndex(1, makeNumber(-2));
  EXPECT_EQ(arraySlotsCopied(), before + 999) << "once only";
  EXPECT_EQ(copy->count(), 1000U);
  EXPECT_EQ(value(*copy, 0), 0);
  EXPECT_EQ(value(*copy, 999), 999);
}

TEST(ArrayBuffer, LetsThreadsAddToOneArrayAndReleaseTheirResults) {
  const auto base = grown(11);
  onThreads(4, [&](std::uint64_t thread) {
    for (int round = 0; round < 2000; ++round) {
      Strong<NSArray> mine = base;
      for (std::uint64_t i = 0; i < 5; ++i) mine = mine->arrayByAddingObject(makeNumber(thread * 100 + i));
      for (std::uint64_t i = 0; i < 16; ++i) {
        ASSERT_EQ(value(*mine, i), static_cast<std::int64_t>(i < 11 ? i : thread * 100 + i - 11));
      }
    }
  });
  const std::uint64_t before = arraySlotsCopied();
  EXPECT_EQ(base->arrayByAddingObject(makeNumber(1))->count(), 12U);
  EXPECT_EQ(arraySlotsCopied(), before) << "everything was given back";
}
