// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/frame/main_queue.h>
#include <HavrinFoundation/frame/main_queue_mark.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/testkit/test_clock.h>

namespace {

using namespace havrin;

// Before main(), and before anything else has touched a queue.
const bool ranBeforeMain = [] {
  bool ran = false;
  GuaranteeMainQueue([&ran] { ran = true; });
  return ran;
}();

TEST(GuaranteeMainQueue, RunsAtOnceOnTheMainQueue) {
  EXPECT_TRUE(ranBeforeMain) << "before any run loop, in a static initialiser";
  TestClock clock;
  std::string order;
  const auto atOnce = [&](const char* where) { GuaranteeMainQueue([&] { order += where; }); };
  const DispatchQueue inner = dispatch_queue_create("inner", DISPATCH_QUEUE_SERIAL, dispatch_get_main_queue());
  const DispatchQueue outer = dispatch_queue_create("outer", DISPATCH_QUEUE_SERIAL, inner);
  dispatch_async(dispatch_get_main_queue(), [&] { atOnce(" queued"); });
  RunLoop::current().performAfter(1, [&] { atOnce(" timer"); });
  clock.advance(1);
  dispatch_async(outer, [&] { atOnce(" through"); });
  EXPECT_TRUE(clock.runUntil([&] { return order == " queued timer through"; }));
}

TEST(GuaranteeMainQueue, QueuesFromAnywhereElseInOrder) {
  TestClock clock;
  std::vector<int> order;
  const auto queue = [&](int number) {
    GuaranteeMainQueue([&order, number] {
      EXPECT_TRUE(isMainThread());
      order.push_back(number);
    });
  };
  std::thread([&] {
    for (int i = 0; i < 3; ++i) queue(i);
  }).join();
  EXPECT_TRUE(order.empty()) << "only queued";
  queue(-1);
  EXPECT_EQ(order, (std::vector<int>{-1})) << "does not wait for what others have queued";
  clock.runDue();
  dispatch_async(dispatch_queue_create("line", DISPATCH_QUEUE_SERIAL), [&] { queue(3); });
  EXPECT_TRUE(clock.runUntil([&] { return order.size() == 5; }));
  EXPECT_EQ(order, (std::vector<int>{-1, 0, 1, 2, 3}));
}

TEST(GuaranteeMainQueue, QueuesOnTheMainThreadInsideAnotherQueueAndWhileTheMarkIsMissing) {
  TestClock clock;
  int runs = 0;
  const auto increment = [&] { GuaranteeMainQueue([&] { ++runs; }); };
  dispatch_sync(dispatch_queue_create("private", DISPATCH_QUEUE_SERIAL), [&] {
    ASSERT_TRUE(isMainThread());
    increment();
  });
  EXPECT_EQ(runs, 0) << "the main thread, but another queue";
  clock.runDue();
  EXPECT_EQ(runs, 1);
  const DispatchQueue main = dispatch_get_main_queue();
  EXPECT_EQ(dispatch_queue_get_specific(main, kMainQueueKey), kMainQueueValue);
  dispatch_queue_set_specific(main, kMainQueueKey, nullptr, nullptr);
  SetMainQueueIdentifier();
  EXPECT_EQ(dispatch_queue_get_specific(main, kMainQueueKey), nullptr) << "marks once only";
  increment();
  EXPECT_EQ(runs, 1);
  clock.runDue();
  EXPECT_EQ(runs, 2);
  dispatch_queue_set_specific(main, kMainQueueKey, kMainQueueValue, nullptr);
}

TEST(GuaranteeMainQueue, KeepsTheBlockForTheCallAndPassesItsExceptionOn) {
  Block<void()> block;
  std::string read;
  block = [&block, &read, text = std::string("still here")] {
    block = nullptr;  // the caller's reference was not the last
    read = text;
  };
  GuaranteeMainQueue(block);
  EXPECT_EQ(read, "still here");
  EXPECT_THROW(GuaranteeMainQueue([] { throw std::runtime_error("out"); }), std::runtime_error);
  EXPECT_THROW(GuaranteeMainQueue(nullptr), NSException);
}

}  // namespace
