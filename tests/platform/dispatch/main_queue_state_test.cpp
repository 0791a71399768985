// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/dispatch/main_queue_state.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <atomic>

namespace {

using namespace havrin;

TEST(MainQueue, RunsInOrderAndNotWithinItself) {
  TestClock clock;
  std::vector<int> order;
  const DispatchQueue main = dispatch_get_main_queue();
  dispatch_async(main, [&] {
    order.push_back(1);
    dispatch_async(main, [&] { order.push_back(4); });
    RunLoop::current().performAfter(0, [&] { order.push_back(2); });
    // A nested loop runs what is due, but no other closure of the queue.
    EXPECT_TRUE(RunLoop::current().runMode(NSDefaultRunLoopMode, monotonicSeconds() + 5));
  });
  dispatch_async(main, [&] { order.push_back(3); });
  EXPECT_TRUE(clock.runUntil([&] { return order.size() == 4; }));
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4}));
}

TEST(MainQueue, RunsASyncFromAnotherThreadOnTheMainThread) {
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
