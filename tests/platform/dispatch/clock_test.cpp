#include <HavrinFoundation/platform/dispatch/clock.h>

#include <ctime>

#include "../../testing.h"

namespace {

using namespace havrin;

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

}  // namespace
