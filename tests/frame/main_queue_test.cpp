#include <HavrinFoundation/frame/main_queue.h>

#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace havrin;

// What a block sees of where it runs.
struct Place {
  bool ran = false;
  bool onMainThread = false;
  void look() {
    ran = true;
    onMainThread = isMainThread();
  }
};

// Before main(), and before anything else has touched a queue.
const bool ranBeforeMain = [] {
  bool ran = false;
  GuaranteeMainQueue([&ran] { ran = true; });
  return ran;
}();

TEST(GuaranteeMainQueue, RunsAtOnceOnTheMainQueue) {
  EXPECT_TRUE(ranBeforeMain) << "before any run loop, in a static initialiser";
  std::vector<int> order;
  GuaranteeMainQueue([&] {
    order.push_back(1);
    GuaranteeMainQueue([&] { order.push_back(2); });
    order.push_back(3);
  });
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3})) << "nested inside the caller";

  TestClock clock;
  Place queued;
  Place inTimer;
  dispatch_async(dispatch_get_main_queue(), [&] { GuaranteeMainQueue([&] { queued.look(); }); });
  RunLoop::current().performAfter(1, [&] {
    GuaranteeMainQueue([&] { inTimer.look(); });
    EXPECT_TRUE(inTimer.ran);
  });
  clock.advance(1);
  EXPECT_TRUE(queued.ran && inTimer.ran);
}

TEST(GuaranteeMainQueue, RunsAtOnceOnAQueueThatRunsThroughTheMainQueue) {
  TestClock clock;
  const DispatchQueue inner = dispatch_queue_create("inner", DISPATCH_QUEUE_SERIAL, dispatch_get_main_queue());
  const DispatchQueue outer = dispatch_queue_create("outer", DISPATCH_QUEUE_SERIAL, inner);
  Place place;
  bool ranInside = false;
  dispatch_async(outer, [&] {
    GuaranteeMainQueue([&] { place.look(); });
    ranInside = place.ran;
  });
  EXPECT_TRUE(clock.runUntil([&] { return place.ran; }));
  EXPECT_TRUE(ranInside && place.onMainThread);
}

TEST(GuaranteeMainQueue, QueuesFromAnywhereElseInOrder) {
  TestClock clock;
  std::vector<int> order;
  std::thread([&] {
    for (int i = 0; i < 3; ++i) {
      GuaranteeMainQueue([&order, i] {
        EXPECT_TRUE(isMainThread());
        order.push_back(i);
      });
    }
  }).join();
  EXPECT_TRUE(order.empty()) << "only queued";
  GuaranteeMainQueue([&] { order.push_back(-1); });
  EXPECT_EQ(order, (std::vector<int>{-1})) << "does not wait for what others have queued";
  clock.runDue();
  EXPECT_EQ(order, (std::vector<int>{-1, 0, 1, 2}));

  Place place;
  const DispatchQueue line = dispatch_queue_create("line", DISPATCH_QUEUE_SERIAL);
  dispatch_async(line, [&] { GuaranteeMainQueue([&] { place.look(); }); });
  EXPECT_TRUE(clock.runUntil([&] { return place.ran; }));
  EXPECT_TRUE(place.onMainThread);
}

TEST(GuaranteeMainQueue, AsksAboutTheQueueAndNotTheThread) {
  TestClock clock;
  Place place;
  dispatch_sync(dispatch_queue_create("private", DISPATCH_QUEUE_SERIAL), [&] {
    ASSERT_TRUE(isMainThread());
    GuaranteeMainQueue([&] { place.look(); });
    EXPECT_FALSE(place.ran) << "the main thread, but another queue";
  });
  EXPECT_FALSE(place.ran);
  clock.runDue();
  EXPECT_TRUE(place.ran);
}

TEST(GuaranteeMainQueue, QueuesAlwaysWhileTheMarkIsMissing) {
  const DispatchQueue main = dispatch_get_main_queue();
  EXPECT_EQ(dispatch_queue_get_specific(main, kMainQueueKey), kMainQueueValue);
  dispatch_queue_set_specific(main, kMainQueueKey, nullptr, nullptr);
  SetMainQueueIdentifier();
  EXPECT_EQ(dispatch_queue_get_specific(main, kMainQueueKey), nullptr) << "marks once only";

  TestClock clock;
  Place place;
  GuaranteeMainQueue([&] { place.look(); });
  EXPECT_FALSE(place.ran);
  clock.runDue();
  EXPECT_TRUE(place.ran);
  dispatch_queue_set_specific(main, kMainQueueKey, kMainQueueValue, nullptr);
}

TEST(GuaranteeMainQueue, IsKnownByTwoPointersToThemselves) {
  EXPECT_EQ(kMainQueueKey, static_cast<const void*>(&kMainQueueKey));
  EXPECT_EQ(kMainQueueValue, static_cast<const void*>(&kMainQueueValue));
  EXPECT_NE(kMainQueueKey, kMainQueueValue);
}

TEST(GuaranteeMainQueue, KeepsTheBlockForTheCallAndPassesOnWhatItThrows) {
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
