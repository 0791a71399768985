// SPDX-License-Identifier: Apache-2.0
// Date and NSDate, which holds one.
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/platform/time/date.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <chrono>
#include <cmath>

namespace havrin {
namespace {

using std::chrono::sys_time;

TEST(Date, KeepsSecondsSince2001) {
  EXPECT_EQ(Date().timeIntervalSince1970(), 978307200);
  EXPECT_EQ(Date::fromTimeIntervalSince1970(0.001).timeIntervalSince1970(), 0.001000046730041504);
  EXPECT_EQ(Date::fromTimeIntervalSince1970(0.99999999).timeIntervalSince1970(), 1.0);
  EXPECT_LT(Date::fromTimeIntervalSince1970(-1), Date::fromTimeIntervalSince1970(0));
  const Date nothing = Date::fromTimeIntervalSince1970(kNotANumber);
  EXPECT_FALSE(nothing == nothing || nothing < Date() || nothing > Date());
  EXPECT_EQ(std::hash<Date>()(Date::fromTimeIntervalSinceReferenceDate(-0.0)), std::hash<Date>()(Date()));
}

TEST(Date, ConvertsTimePointsBothWaysToTheTick) {
  using Milliseconds = std::chrono::milliseconds;
  for (const std::int64_t count : {0LL, 1LL, 999LL, -1LL, -1500LL, 1'709'649'000'123LL, -62'135'596'800'001LL}) {
    const sys_time<Milliseconds> point{Milliseconds(count)};
    EXPECT_EQ(Date(point).timePoint<sys_time<Milliseconds>>(), point) << count;
  }
  // A nanosecond count has more digits than a double: whole seconds and the rest are converted apart.
  const sys_time<std::chrono::nanoseconds> fine{std::chrono::nanoseconds(978'307'200'000'000'007)};
  EXPECT_EQ(Date(fine).timeIntervalSinceReferenceDate(), 7e-9);
  EXPECT_EQ(Date(fine).timePoint<sys_time<std::chrono::nanoseconds>>(), fine);
  EXPECT_EQ(Date(sys_time<std::chrono::days>{std::chrono::days(1)}), Date::fromTimeIntervalSince1970(86400));
}

TEST(Date, SaturatesTimePointsThatADurationLacks) {
  using Point = sys_time<std::chrono::nanoseconds>;
  for (const double far : {9.3e9, 1e18, 1e300, kInfinity}) {
    EXPECT_EQ(Date::fromTimeIntervalSince1970(far).timePoint<Point>(), Point::max()) << far;
    EXPECT_EQ(Date::fromTimeIntervalSince1970(-far).timePoint<Point>(), Point::min()) << far;
  }
  EXPECT_EQ(Date::fromTimeIntervalSince1970(kNotANumber).timePoint<Point>(), Point());
  using Narrow = std::chrono::duration<std::int32_t>;
  EXPECT_EQ(Date::fromTimeIntervalSince1970(1e10).timePoint<sys_time<Narrow>>(), sys_time<Narrow>::max());
}

TEST(Date, IsNowByTheInstalledClock) {
  {
    TestClock clock;
    clock.setWallSecondsSince1970(1709649000.25);
    EXPECT_EQ(Date::now().timeIntervalSince1970(), 1709649000.25);
    EXPECT_EQ(NSDate::date()->timeIntervalSince1970(), 1709649000.25);
  }
  EXPECT_NEAR(Date::now() - Date(std::chrono::system_clock::now()), 0, 60);
}

/// A date of its own making: subclasses need the one primitive.
class Noon : public Object<Noon, NSDate> {
 public:
  double timeIntervalSinceReferenceDate() const override { return 43200; }
};

TEST(NSDate, ComparesAndDescribesInstants) {
  const Strong<NSDate> early = make<NSDate>(Date());
  const Strong<NSDate> late = alloc<NSDate>()->initWithTimeIntervalSinceReferenceDate(43200);
  const Strong<Noon> noon = make<Noon>();
  EXPECT_EQ(early->compare(late), NSComparisonResult::NSOrderedAscending);
  EXPECT_EQ(noon->compare(early), NSComparisonResult::NSOrderedDescending);
  EXPECT_EQ(late->compare(noon), NSComparisonResult::NSOrderedSame);
  EXPECT_THROW((void)early->compare(nullptr), NSException);
  expectEquality(late, {noon, alloc<NSDate>()->initWithTimeIntervalSince1970(978350400)}, {early, make<NSObject>()});
  const Strong<NSDate> never = make<NSDate>(Date() + kNotANumber);
  expectEquality(never, {never}, {make<NSDate>(Date() + kNotANumber)});
  EXPECT_EQ(early->copy(), early);
  EXPECT_EQ(text(early), "2001-01-01 00:00:00 +0000");
  EXPECT_EQ(text(noon), "2001-01-01 12:00:00 +0000");
}

}  // namespace
}  // namespace havrin
