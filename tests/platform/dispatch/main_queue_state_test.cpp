#include "../../testing.h"
#include <HavrinFoundation/platform/dispatch/main_queue_state.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <algorithm>
#include <atomic>

namespace {

using namespace havrin;

// Addresses that serve as keys and values.
int mainKey;
int valueA;

TEST(MainQueue, IsCurrentOnTheMainThreadOutsideOtherQueues) {
  dispatch_queue_set_specific(dispatch_get_main_queue(), &mainKey, &valueA, nullptr);
  ASSERT_TRUE(isMainThread());
  EXPECT_EQ(dispatch_get_specific(&mainKey), &valueA) << "also before any run loop";
  dispatch_sync(dispatch_queue_create("line", DISPATCH_QUEUE_SERIAL), [&] {
    EXPECT_EQ(dispatch_get_specific(&mainKey), nullptr) << "the main thread, but not the main queue";
    EXPECT_TRUE(isMainThread());
  });
  std::thread([&] {
    EXPECT_EQ(dispatch_get_specific(&mainKey), nullptr);
    EXPECT_FALSE(isMainThread());
  }).join();

  TestClock clock;
  int seen = 0;
  const auto look = [&seen] { seen += isMainThread() && dispatch_get_specific(&mainKey) == &valueA; };
  RunLoop::current().performAfter(1, look);
  clock.advance(1);
  EXPECT_EQ(seen, 1);
  dispatch_async(dispatch_queue_create("through main", DISPATCH_QUEUE_SERIAL, dispatch_get_main_queue()), look);
  EXPECT_TRUE(clock.runUntil([&] { return seen == 2; }));
}

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
