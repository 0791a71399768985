// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/dispatch/once.h>

namespace {

using namespace havrin;

TEST(Once, CallsOneBlockWhileTheOthersWait) {
  for (int round = 0; round < 100; ++round) {
    dispatch_once_t once;
    int value = 0;  // not atomic: a caller that returns has seen it written
    onThreads(6, [&] {
      dispatch_once(&once, [&] {
        std::this_thread::yield();
        ++value;
      });
      EXPECT_EQ(value, 1);
    });
    dispatch_once(&once, [&] { ++value; });
    EXPECT_EQ(value, 1);
  }
}

void askAgainFromInside() {
  dispatch_once_t once;
  dispatch_once(&once, [&] { dispatch_once(&once, [] {}); });
}

void throwFromInside() {
  dispatch_once_t once;
  dispatch_once(&once, [] { throw std::runtime_error("no table"); });
}

TEST(OnceDeathTest, StopsTheProcessWithOneLine) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(askAgainFromInside(), "dispatch_once: called again from inside its own block\n");
  EXPECT_DEATH(throwFromInside(), "an exception left the block of dispatch_once: no table\n");
}

}  // namespace
