// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/testkit/test_clock.h>

namespace havrin {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// A date of its own making: subclasses need the one primitive.
class Noon : public Object<Noon, NSDate> {
 public:
  double timeIntervalSinceReferenceDate() const override { return 43200; }
};

TEST(NSDate, IsTheCurrentInstantUntilItIsToldAnother) {
  TestClock clock;
  clock.setWallSecondsSince1970(1709649000.25);
  EXPECT_EQ(NSDate::date()->timeIntervalSince1970(), 1709649000.25);
  EXPECT_EQ(alloc<NSDate>()->initWithTimeIntervalSince1970(1.5)->timeIntervalSince1970(), 1.5);
  EXPECT_EQ(alloc<NSDate>()->initWithTimeIntervalSinceReferenceDate(2.5)->value(), Date() + 2.5);
}

TEST(NSDate, ComparesInstantsWhoeverKeepsThem) {
  const Strong<NSDate> early = make<NSDate>(Date());
  const Strong<NSDate> late = make<NSDate>(Date() + 43200);
  const Strong<Noon> noon = make<Noon>();
  EXPECT_EQ(early->compare(late), NSComparisonResult::NSOrderedAscending);
  EXPECT_EQ(noon->compare(early), NSComparisonResult::NSOrderedDescending);
  EXPECT_EQ(late->compare(noon), NSComparisonResult::NSOrderedSame);
  EXPECT_TRUE(late->isEqual(noon) && noon->isEqual(late));
  EXPECT_EQ(late->hash(), noon->hash());
  EXPECT_FALSE(early->isEqual(late) || early->isEqual(nullptr) || early->isEqual(make<NSObject>()));
  const Strong<NSDate> never = make<NSDate>(Date() + kNan);
  EXPECT_TRUE(never->isEqual(never));
  EXPECT_FALSE(never->isEqual(make<NSDate>(Date() + kNan)));
  EXPECT_THROW((void)early->compare(nullptr), NSException);
  EXPECT_EQ(early->copy(), early);
}

TEST(NSDate, DescribesItselfInUtc) {
  EXPECT_EQ(utf8(*make<NSDate>(Date())->description()), "2001-01-01 00:00:00 +0000");
  EXPECT_EQ(utf8(*make<Noon>()->description()), "2001-01-01 12:00:00 +0000");
}

}  // namespace
}  // namespace havrin
