// SPDX-License-Identifier: Apache-2.0
// The main queue as a host loop sees it, and as threads see it: a program of its own, since it looks at the whole queue.
#include "../../testing.h"
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/host_loop.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop_state.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <atomic>
#include <poll.h>

namespace {

using namespace havrin;

int target;
int otherTarget;
int selectorA;

// Whether the descriptor is readable, within `milliseconds`.
bool isReadable(int milliseconds = 0) {
  pollfd watched{mainLoopDescriptor(), POLLIN, 0};
  return poll(&watched, 1, milliseconds) == 1;
}

bool isAtRest() { return !isReadable() && mainLoopDeadline() == std::nullopt; }

TEST(HostLoop, TheDescriptorIsReadableWhileTheMainQueueHasWork) {
  EXPECT_TRUE(isAtRest());
  std::vector<int> order;
  std::thread([&] {
    for (int i = 0; i < 3; ++i) dispatch_async(dispatch_get_main_queue(), [&order, i] { order.push_back(i); });
  }).join();
  EXPECT_TRUE(isReadable());
  drainMainLoop();
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
  EXPECT_TRUE(isAtRest());

  dispatch_async(dispatch_get_main_queue(), [&] {
    dispatch_async(dispatch_get_main_queue(), [&] { order.push_back(4); });
    drainMainLoop();
    EXPECT_FALSE(isReadable()) << "a host loop nested in here must not spin";
    order.push_back(3);
  });
  drainMainLoop();
  EXPECT_EQ(order.back(), 3);
  EXPECT_TRUE(isReadable()) << "what was queued meanwhile waits for the host to come back";
  drainMainLoop();
  EXPECT_EQ(order.back(), 4);
  EXPECT_TRUE(isAtRest());

  RunLoop::main().perform([&] { order.push_back(5); });
  EXPECT_TRUE(isReadable());
  drainMainLoop();
  EXPECT_EQ(order.back(), 5);
  EXPECT_TRUE(isAtRest());
}

TEST(HostLoop, TheDescriptorIsReadableWhenADelayedPerformIsDue) {
  RunLoopState& loop = RunLoopState::of(RunLoop::main());
  bool ran = false;
  loop.performAfterDelay({&otherTarget, &selectorA}, 1000, Work([] {}));
  loop.performAfterDelay({&target, &selectorA}, 0.002, Work([&] { ran = true; }));
  EXPECT_GT(*mainLoopDeadline(), monotonicSeconds() - 1);
  EXPECT_TRUE(isReadable(10'000)) << "the system's timer, not a test's clock";
  drainMainLoop();
  EXPECT_TRUE(ran);
  EXPECT_FALSE(isReadable()) << "the other one is far away";

  ran = false;
  loop.performAfterDelay({&target, &selectorA}, 500, Work([&] { ran = true; }));
  EXPECT_TRUE(loop.postponePerform(&target, &selectorA, 0.001)) << "an earlier deadline sets the timer anew";
  EXPECT_TRUE(isReadable(10'000));
  drainMainLoop();
  EXPECT_TRUE(ran);

  loop.performAfterDelay({&target, &selectorA}, 0.001, Work([] { FAIL() << "cancelled"; }));
  loop.cancelPerforms(&target);
  if (isReadable(10'000)) drainMainLoop();
  EXPECT_FALSE(isReadable());
  loop.cancelPerforms(&otherTarget);
  EXPECT_TRUE(isAtRest());
}

TEST(HostLoop, FollowsATestsClock) {
  TestClock clock;
  bool ran = false;
  RunLoop::main().performAfter(60, [&] { ran = true; });
  drainMainLoop();
  EXPECT_FALSE(isReadable());
  clock.spend(59);
  drainMainLoop();
  EXPECT_FALSE(ran || isReadable());
  clock.spend(1);
  EXPECT_TRUE(isReadable());
  drainMainLoop();
  EXPECT_TRUE(ran);
  EXPECT_TRUE(isAtRest());
}

TEST(HostLoop, TheDescriptorIsRightAfterAnException) {
  bool ran = false;
  RunLoop::main().performAfter(0, [] { throw std::runtime_error("out"); });
  RunLoop::main().performAfter(0, [&] { ran = true; });
  EXPECT_TRUE(isReadable(10'000));
  EXPECT_THROW(drainMainLoop(), std::runtime_error);
  EXPECT_TRUE(isReadable(10'000));
  drainMainLoop();
  EXPECT_TRUE(ran);
  EXPECT_TRUE(isAtRest());
}

TEST(HostLoopDeathTest, BelongsToTheMainThread) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(std::thread([] { drainMainLoop(); }).join(), "drainMainLoop: must be called on the main thread\n");
}

TEST(MainQueue, RunsASyncOfAnotherThreadOnTheMainThread) {
  TestClock clock;
  std::atomic<int> done{0};
  const DispatchQueue through = dispatch_queue_create("through main", DISPATCH_QUEUE_SERIAL, dispatch_get_main_queue());
  std::thread caller([&] {
    for (const DispatchQueue& queue : {dispatch_get_main_queue(), through}) {
      bool onMain = false;
      dispatch_sync(queue, [&] { onMain = isMainThread(); });
      EXPECT_TRUE(onMain);
      EXPECT_THROW(dispatch_sync(queue, [] { throw std::runtime_error("out"); }), std::runtime_error);
    }
    done = 1;
    RunLoop::main().wake();
  });
  EXPECT_TRUE(clock.runUntil([&] { return done == 1; }));
  caller.join();
}

}  // namespace
