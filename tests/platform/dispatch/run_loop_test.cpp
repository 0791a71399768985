// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/platform/dispatch/run_loop_source.h>
#include <HavrinFoundation/platform/dispatch/run_loop_state.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <atomic>

using namespace havrin;

namespace {

int target;
int otherTarget;
int selectorA;
int selectorB;

// The loop of this thread, under a clock of the test's.
struct OnThisLoop : testing::Test {
  TestClock clock;
  RunLoopState& loop = RunLoopState::current();
  std::string ran;

  // Work that notes that it ran.
  auto note(const char* what) {
    return [this, what] { ran += what; };
  }
  std::string take() { return std::exchange(ran, ""); }
  // Arguments are compared by what they point to, like objects that are equal.
  void cancel(const PerformKey& key) {
    RunLoopState::current().cancelPerforms(key, [&key](const void* other) {
      return *static_cast<const std::string*>(other) == *static_cast<const std::string*>(key.argument);
    });
  }
};
using RunLoopTest = OnThisLoop;

}  // namespace

TEST_F(RunLoopTest, RunsDelayedWorkInTheOrderOfItsDueTimes) {
  loop.performAfter(0.3, note("c"));
  loop.performAfter(0.1, note("a"));
  loop.performAfter(0.3, note("d"));
  loop.performAfter(0.2, note("b"));
  loop.performAfter(0, note("zero, "));
  loop.performAfter(-5, note("negative, "));
  loop.performAfter(kNotANumber, note("not a number"));
  EXPECT_EQ(take(), "") << "never within the call";
  clock.advance(0.0);
  EXPECT_EQ(take(), "zero, negative, not a number");
  clock.advance(0.2);
  EXPECT_EQ(take(), "ab");
  clock.advance(0.1);
  EXPECT_EQ(take(), "cd");
  EXPECT_EQ(loop.nextDeadline(), std::nullopt);
  loop.performAfter(0, [&] {
    ran += "first ";
    loop.performAfter(0, note("second"));
  });
  EXPECT_TRUE(loop.runDue());
  EXPECT_EQ(take(), "first ") << "what it scheduled runs in a later pass";
  EXPECT_TRUE(loop.runDue());
  EXPECT_EQ(take(), "second");
  EXPECT_FALSE(loop.runDue());
}

TEST_F(RunLoopTest, RunsOnlyTheModeItRunsIn) {
  loop.performAfter(0, note("default "));
  loop.performAfter(0, note("tracking "), "tracking");
  loop.performAfter(0, note("common "), NSRunLoopCommonModes);
  loop.perform(note("posted "), "tracking");
  dispatch_async(dispatch_get_main_queue(), note("main "));
  loop.runDue("tracking");
  EXPECT_EQ(take(), "tracking posted ");
  loop.runDue();
  EXPECT_EQ(take(), "default common main ") << "the main queue belongs to the common modes";
  loop.addCommonMode("tracking");
  loop.performAfter(0, note("common "), NSRunLoopCommonModes);
  dispatch_async(dispatch_get_main_queue(), note("main "));
  loop.runDue("tracking");
  EXPECT_EQ(take(), "common main ");
}

TEST_F(RunLoopTest, ReturnsWhetherAnythingIsAttached) {
  std::thread([this, now = monotonicSeconds()] {
    RunLoop& own = RunLoop::current();
    EXPECT_FALSE(own.runMode(NSDefaultRunLoopMode, now + 10)) << "nothing is attached";
    own.runUntil(now + 10);
    own.performAfter(0, note("delayed "));
    EXPECT_FALSE(own.runMode("tracking", now + 10)) << "attached to another mode";
    EXPECT_TRUE(own.runMode(NSDefaultRunLoopMode, now + 10)) << "ends when nothing is attached any more";
    own.perform(note("one "));
    own.perform(note("batch"));
    EXPECT_TRUE(own.runMode(NSDefaultRunLoopMode, kInfinity));
    EXPECT_EQ(take(), "delayed one batch");
    own.performAfter(100, note("not yet"));
    EXPECT_TRUE(own.runMode(NSDefaultRunLoopMode, now)) << "attached, and at its limit";
    EXPECT_TRUE(own.runMode(NSDefaultRunLoopMode, kNotANumber)) << "NaN is not a time to wait";
    EXPECT_EQ(take(), "");
  }).join();
}

TEST_F(RunLoopTest, EndsAWaitForPostedWorkAndNotForDelayedWork) {
  const double start = monotonicSeconds();
  loop.performAfter(1, note("1"));
  loop.performAfter(2, note("2"));
  loop.performAfter(3, note("3"));
  EXPECT_TRUE(loop.runMode(NSDefaultRunLoopMode, start + 2.5));
  EXPECT_EQ(take(), "12");
  EXPECT_EQ(monotonicSeconds(), start + 2.5);
  loop.performAfter(0.25, [this] { dispatch_async(dispatch_get_main_queue(), note("main ")); });
  EXPECT_TRUE(loop.runMode(NSDefaultRunLoopMode, start + 100));
  EXPECT_EQ(monotonicSeconds(), start + 2.75) << "the main queue ended the wait";
  loop.runUntil(start + 4);
  EXPECT_EQ(take(), "main 3");
  EXPECT_EQ(monotonicSeconds(), start + 4);
}

TEST_F(RunLoopTest, CancelsByTargetSelectorAndEqualArgument) {
  const std::string a = "a", alsoA = "a";
  const PerformKey plain{&target, &selectorA}, other{&target, &selectorB}, equal{&target, &selectorA, &alsoA};
  const auto runs = std::make_shared<int>(0);
  for (const PerformKey& key : {plain, plain, other, PerformKey{&target, &selectorA, &a}, {&otherTarget, &selectorA}}) {
    loop.performAfterDelay(key, 1, Work([runs] { ++*runs; }));
  }
  const auto held = [&runs] { return runs.use_count() - 1; };  // what is cancelled is released at once
  cancel(plain);
  EXPECT_EQ(held(), 3) << "both of two equal ones, and none with an argument";
  cancel(equal);
  EXPECT_EQ(held(), 2);
  std::thread([&] { cancel(other); }).join();
  EXPECT_EQ(held(), 2) << "another thread has a loop of its own";
  loop.cancelPerforms(&target);
  EXPECT_EQ(held(), 1) << "everything of the target";
  clock.advance(2);
  EXPECT_EQ(*runs, 1);
}

TEST(RunLoopThreads, WaitOnTheRealClockUntilTheirDeadlines) {
  std::thread([] {
    RunLoop& loop = RunLoop::current();
    const double start = monotonicSeconds();
    double firedAfter = 0;
    loop.performAfter(0.002, [&] { firedAfter = monotonicSeconds() - start; });
    loop.performAfter(1000, [] {});
    EXPECT_TRUE(loop.runMode(NSDefaultRunLoopMode, start + 0.004));
    EXPECT_GE(firedAfter, 0.002);
    EXPECT_GE(monotonicSeconds(), start + 0.004);
  }).join();
}

TEST(RunLoopThreads, ReleaseTheirPendingWorkWhenTheyEnd) {
  std::atomic<int> released{0};
  // An object and a selector, since a diagnosis names them.
  const auto object = make<NSObject>();
  const PerformKey key{object.get(), Selector(selector<"run">).key()};
  std::thread([&released, &key] {
    const auto held = [&, self = std::this_thread::get_id()] {
      const std::shared_ptr<void> witness(nullptr, [&released, &key, self](void*) {
        // What is destroyed late may still turn to its run loop.
        RunLoop::current().performAfter(0, [] {});
        RunLoopState::current().cancelPerforms(key, nullptr);
        RunLoop::current().perform([] {});
        released += std::this_thread::get_id() == self;
      });
      return [witness] { ADD_FAILURE() << "it ran"; };
    };
    RunLoopState& loop = RunLoopState::current();
    loop.performAfterDelay(key, 5, Work(held()));
    loop.performAfter(5, held(), "tracking");
    loop.perform(held());
  }).join();
  EXPECT_EQ(released, 3);
}

TEST_F(RunLoopTest, PassesAnExceptionOnAndKeepsTheRestWaiting) {
  loop.perform([] { throw std::runtime_error("posted"); });
  loop.perform(note("posted "));
  loop.performAfter(0, [] { throw std::runtime_error("delayed"); });
  loop.performAfter(0, note("delayed "));
  EXPECT_THROW(loop.runDue(), std::runtime_error);
  EXPECT_EQ(ran, "");
  EXPECT_THROW(loop.runDue(), std::runtime_error);
  loop.runDue();
  loop.runDue();
  EXPECT_EQ(ran.size(), 15u) << ran;
}

TEST_F(RunLoopTest, HandlesPendingSignalsOfASourceOnce) {
  std::unique_ptr<RunLoopSource> source;
  source = std::make_unique<RunLoopSource>([&] {
    ran += "handled ";
    if (ran == "handled ") source->signal();
  });
  EXPECT_FALSE(loop.runDue());
  std::thread([&] {
    source->signal();
    source->signal();
  }).join();
  EXPECT_TRUE(loop.runDue());
  EXPECT_EQ(ran, "handled ");
  EXPECT_TRUE(loop.runDue()) << "signalled again from inside its handler";
  EXPECT_EQ(take(), "handled handled ");
  source->signal();
  source.reset();
  clock.runDue();
  EXPECT_EQ(take(), "") << "a signal dies with its source";
  EXPECT_THROW(RunLoopSource(nullptr), NSException);
  std::thread([] {
    auto attached = std::make_unique<RunLoopSource>([] {}, "tracking");
    EXPECT_TRUE(RunLoop::current().runMode("tracking", monotonicSeconds()));
    attached = nullptr;
    EXPECT_FALSE(RunLoop::current().runMode("tracking", monotonicSeconds())) << "nothing is attached any more";
  }).join();
}
