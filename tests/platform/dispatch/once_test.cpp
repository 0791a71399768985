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

TEST(OnceDeathTest, StopsTheProcessWithOneLine) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  dispatch_once_t once;
  EXPECT_DEATH(dispatch_once(&once, [&] { dispatch_once(&once, [] {}); }), "called again from inside its own block\n");
  EXPECT_DEATH(dispatch_once(&once, [] { throw std::runtime_error("no table"); }),
               "an exception left the block of dispatch_once: no table\n");
}

}  // namespace
