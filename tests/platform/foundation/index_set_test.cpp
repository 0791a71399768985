// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/index_set.h>

#include <set>

using namespace havrin;

namespace {

std::vector<std::uint64_t> indexes(const NSIndexSet& set) {
  std::vector<std::uint64_t> all;
  set.enumerateIndexesUsingBlock([&](std::uint64_t index, bool&) { all.push_back(index); });
  return all;
}

}  // namespace

TEST(IndexSet, HoldsEveryIndexOnceInAscendingOrder) {
  std::mt19937_64 random = seededGenerator();
  for (int round = 0; round < 200; ++round) {
    std::vector<std::uint64_t> given(random() % 40);
    for (auto& index : given) index = random() % 50;
    const std::set<std::uint64_t> expected(given.begin(), given.end());
    const auto set = makeIndexSet(given);
    EXPECT_EQ(indexes(*set), std::vector<std::uint64_t>(expected.begin(), expected.end()));
    EXPECT_EQ(set->count(), expected.size());
    EXPECT_EQ(set->firstIndex(), expected.empty() ? kNotFound : *expected.begin());
    EXPECT_EQ(set->lastIndex(), expected.empty() ? kNotFound : *expected.rbegin());
    for (std::uint64_t index = 0; index < 52; ++index) {
      EXPECT_EQ(set->containsIndex(index), expected.contains(index));
      const auto above = expected.upper_bound(index);
      EXPECT_EQ(set->indexGreaterThanIndex(index), above == expected.end() ? kNotFound : *above);
    }
  }
}

TEST(IndexSet, IsEqualHoweverItWasMade) {
  const auto set = makeIndexSet({2, 0, 1});
  expectEquality(set, {makeIndexSet(NSRange{0, 3})}, {makeIndexSet({0, 1})});
  EXPECT_EQ(set->copy().get(), set.get());
}

TEST(IndexSet, RefusesIndexesBeyondTheLast) {
  EXPECT_EQ(makeIndexSet(NSRange{kNotFound - 1, 1})->lastIndex(), kNotFound - 1);
  const NSRange bad[] = {{kNotFound, 1}, {0, kNotFound + 1}, {~std::uint64_t{0}, 2}, {1, ~std::uint64_t{0}}};
  for (const NSRange range : bad) EXPECT_THROW((void)makeIndexSet(range), NSException) << range.location;
  EXPECT_THROW((void)makeIndexSet({kNotFound}), NSException);
}
