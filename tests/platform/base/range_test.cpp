// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/base/range.h>

namespace {

using havrin::ClosedRange;
using havrin::NSRange;
using havrin::Range;

static_assert(Range{2, 5}.contains(2) && !Range{2, 5}.contains(5) && !Range{2, 2}.contains(2));
static_assert(Range{2, 2}.isEmpty() && !Range{2, 5}.isEmpty());
static_assert(ClosedRange{2, 5}.contains(5) && ClosedRange{2, 2}.contains(2) && !ClosedRange{2, 5}.contains(6));
static_assert(havrin::kNotFound == std::uint64_t{std::numeric_limits<std::int64_t>::max()});
static_assert(NSRange{} == NSRange{0, 0} && NSRange{1, 2} != NSRange{2, 1});

TEST(RangeDeathTest, BoundsOutOfOrderEndTheProcess) {
  EXPECT_DEATH((Range{5, 2}), "lowerBound <= upperBound");
  EXPECT_DEATH((ClosedRange{std::string("b"), std::string("a")}), "lowerBound <= upperBound");
  EXPECT_DEATH((Range{0.0, kNotANumber}), "lowerBound <= upperBound");
  EXPECT_DEATH((ClosedRange{kNotANumber, kNotANumber}), "lowerBound <= upperBound");
}

}  // namespace
