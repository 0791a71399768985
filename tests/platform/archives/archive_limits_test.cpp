// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/archive_limits.h>

#include <gtest/gtest.h>

#include <vector>

namespace havrin {
namespace {

constexpr std::uint64_t kMost = NSKeyedUnarchiver::kLargestExpansion;

// The budget is taken to the last byte and not beyond, and a refused amount is not taken.
TEST(ArchiveLimits, ABudgetGrowsWithTheArchiveAndIsUsedUpExactly) {
  struct Row {
    std::uint64_t archiveSize, room, work;
  };
  constexpr std::uint64_t kMega = 1 << 20;
  for (const auto& [size, room, work] : {Row{0, 16 * kMega, kMost}, Row{kMega / 2, 16 * kMega, kMost},
                                         Row{kMega, 32 * kMega, kMost}, Row{4 * kMega, 128 * kMega, 32 * kMega}}) {
    ArchiveBudget budget(size);
    EXPECT_FALSE(budget.takeRoom(room + 1));
    EXPECT_TRUE(budget.takeRoom(room - 1) && budget.takeRoom(1)) << size;
    EXPECT_FALSE(budget.takeRoom(1));
    EXPECT_TRUE(budget.takeWork(work)) << size;
    EXPECT_FALSE(budget.takeWork(1));
  }
}

TEST(ArchiveLimits, AnExtentCountsPartsAndDepthUpToTheLimits) {
  ArchivedExtent chain;
  for (std::size_t i = 0; i < NSKeyedUnarchiver::kDeepestNesting; ++i) {
    ArchivedExtent above;
    ASSERT_TRUE(above.add(chain)) << i;
    chain = above;
  }
  EXPECT_EQ(chain.expansion, NSKeyedUnarchiver::kDeepestNesting + 1);
  EXPECT_FALSE(ArchivedExtent().add(chain));
  EXPECT_TRUE(chain.add(kMost - chain.expansion));
  EXPECT_FALSE(chain.add(1));
  EXPECT_EQ(ArchivedExtent::ofText(7).expansion, 1U);
  EXPECT_EQ(ArchivedExtent::ofText(8).expansion, 2U);
  EXPECT_EQ(ArchivedExtent::ofData(256).expansion, 2U);
  EXPECT_EQ(ArchivedExtent::ofText(~std::uint64_t{0}).expansion, kMost);
}

// Each member of a hash is compared with every other one of it: (count - 1) times the work of all.
TEST(ArchiveLimits, SearchWorkIsThatOfEqualHashes) {
  struct Row {
    std::vector<SoughtObject> sought;
    std::uint64_t work;
  };
  for (Row row : {Row{{}, 0}, Row{{{1, 100}, {2, 100}}, 0}, Row{{{1, 2}, {2, 7}, {1, 3}}, 5},
                  Row{{{1, 2}, {2, 7}, {1, 3}, {2, 1}, {1, 5}}, 28}, Row{{{1, kMost}, {1, kMost}, {1, 1}}, 2 * kMost}})
    EXPECT_EQ(searchWork(row.sought), row.work);
}

}  // namespace
}  // namespace havrin
