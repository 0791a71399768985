// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/runtime/clamp.h>

#include <cmath>

namespace {

using havrin::clamp;
using havrin::ClosedRange;
using havrin::Range;

constexpr int kLowest = std::numeric_limits<int>::lowest(), kHighest = std::numeric_limits<int>::max();

// The rules hold in constant expressions, which also shows that no row overflows.
static_assert(clamp(15, ClosedRange{0, 10}) == 10 && clamp(-3, ClosedRange{0, 10}) == 0);
static_assert(clamp(10, ClosedRange{0, 10}) == 10 && clamp(7, ClosedRange{7, 7}) == 7);
static_assert(clamp(kLowest, ClosedRange{kLowest, kHighest}) == kLowest);
static_assert(clamp(15, Range{0, 10}) == 9 && clamp(9, Range{0, 10}) == 9 && clamp(-1, Range{0, 10}) == 0);
static_assert(clamp(3, Range{5, 5}) == 5 && clamp(8, Range{5, 5}) == 5 && clamp(5, Range{5, 5}) == 5);
static_assert(clamp(0, Range{kLowest, kLowest}) == kLowest && clamp(0, Range{kHighest, kHighest}) == kHighest);
static_assert(clamp(kHighest, Range{kLowest, kHighest}) == kHighest - 1);
static_assert(clamp(std::uint8_t{200}, Range{std::uint8_t{0}, std::uint8_t{1}}) == 0);
static_assert(clamp(~std::uint64_t{0}, Range{std::uint64_t{1}, ~std::uint64_t{0}}) == ~std::uint64_t{0} - 1);

template <class T>
concept ClampsToHalfOpen = requires(T value, Range<T> range) {
  clamp(value, range);
};
static_assert(ClampsToHalfOpen<long> && ClampsToHalfOpen<const char*> && ClampsToHalfOpen<std::vector<int>::iterator>);
static_assert(!ClampsToHalfOpen<double> && !ClampsToHalfOpen<bool> && !ClampsToHalfOpen<std::string>);

TEST(Clamp, AsksOnlyWhetherAValueIsLessOrGreater) {
  EXPECT_TRUE(std::isnan(clamp(std::nan(""), ClosedRange{0.0, 1.0})));
  EXPECT_TRUE(std::signbit(clamp(-0.0, ClosedRange{0.0, 1.0})));
  EXPECT_EQ(clamp(std::string("b"), (ClosedRange{std::string("c"), std::string("f")})), "c");
  EXPECT_EQ(clamp(std::string("é"), (ClosedRange{std::string("c"), std::string("f")})), "f");
}

TEST(Clamp, PinsPositionsInASequence) {
  const std::vector<int> values{1, 2, 3};
  const Range all{values.begin(), values.end()};
  EXPECT_EQ(clamp(values.end(), all), values.end() - 1);
  EXPECT_EQ(clamp(values.begin() + 1, all), values.begin() + 1);
  EXPECT_EQ(clamp(values.begin(), Range{values.end(), values.end()}), values.end());
}

}  // namespace
