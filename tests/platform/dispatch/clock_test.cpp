#include <HavrinFoundation/platform/dispatch/clock.h>

#include <gtest/gtest.h>

#include <ctime>

namespace {

using namespace havrin;

class FixedClock : public ClockSource {
 public:
  double monotonicSeconds() const override { return 12.5; }
  double wallSecondsSince1970() const override { return -1.25; }
  bool passTimeTo(double) override { return false; }
};

TEST(Clock, FollowsTheSystemsClocks) {
  timespec before;
  timespec after;
  clock_gettime(CLOCK_MONOTONIC, &before);
  const double reading = monotonicSeconds();
  clock_gettime(CLOCK_MONOTONIC, &after);
  EXPECT_GE(reading, static_cast<double>(before.tv_sec));
  EXPECT_LE(reading, static_cast<double>(after.tv_sec + 1));
  EXPECT_LE(reading, monotonicSeconds());

  EXPECT_NEAR(wallSecondsSince1970(), static_cast<double>(std::time(nullptr)), 2.0);
}

TEST(Clock, AnInstalledSourceAnswersForBothUntilItIsTakenAway) {
  FixedClock fixed;
  EXPECT_EQ(installClockSource(&fixed), nullptr);
  EXPECT_EQ(monotonicSeconds(), 12.5);
  EXPECT_EQ(wallSecondsSince1970(), -1.25);
  EXPECT_EQ(installClockSource(nullptr), &fixed);
  EXPECT_GT(wallSecondsSince1970(), 1e9);
}

}  // namespace
