#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <HavrinFoundation/platform/dispatch/clock.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <algorithm>
#include <atomic>
#include <latch>

#include "../../testing.h"

namespace {

using namespace havrin;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

int target;
int otherTarget;
int selectorA;
int selectorB;

// Arguments are compared by what they point to, like objects that are equal.
bool cancelText(const void* onTarget, const void* selector, const std::string* argument) {
  RunLoop::current().cancelPerforms({onTarget, selector, argument}, [argument](const void* other) {
    return *static_cast<const std::string*>(other) == *argument;
  });
  return true;
}

TEST(RunLoop, RunsDelayedWorkInTheOrderOfItsDueTimes) {
  TestClock clock;
  RunLoop& loop = RunLoop::current();
  std::string order;
  const auto note = [&](const char* name) { return [&order, name] { order += name; }; };
  loop.performAfter(0.3, note("c"));
  loop.performAfter(0.1, note("a"));
  loop.performAfter(0.3, note("d"));
  loop.performAfter(0.2, note("b"));
  loop.performAfter(0, note("zero, "));
  loop.performAfter(-5, note("negative, "));
  loop.performAfter(kNotANumber, note("not a number"));
  EXPECT_EQ(order, "") << "never within the call";
  clock.advance(0.0);
  EXPECT_EQ(std::exchange(order, ""), "zero, negative, not a number");
  clock.advance(0.2);
  EXPECT_EQ(order, "ab");
  clock.advance(0.1);
  EXPECT_EQ(order, "abcd");
  EXPECT_EQ(loop.nextDeadline(), std::nullopt);
}

TEST(RunLoop, WorkThatArrangesItselfAgainWaitsForALaterPass) {
  TestClock clock;
  RunLoop& loop = RunLoop::current();
  int runs = 0;
  std::function<void()> again = [&] {
    if (++runs < 3) loop.performAfter(0, [&] { again(); });
  };
  loop.performAfter(0, [&] { again(); });
  for (int pass = 1; pass <= 3; ++pass) {
    EXPECT_TRUE(loop.runDue());
    EXPECT_EQ(runs, pass);
  }
  EXPECT_FALSE(loop.runDue());
}

TEST(RunLoop, RunsOnlyTheModeItRunsIn) {
  TestClock clock;
  RunLoop& loop = RunLoop::current();
  std::string ran;
  const auto note = [&](const char* what) { return [&ran, what] { ran += what; }; };
  loop.performAfter(0, note("default "));
  loop.performAfter(0, note("tracking "), "tracking");
  loop.performAfter(0, note("common "), NSRunLoopCommonModes);
  loop.perform(note("posted "), "tracking");
  dispatch_async(dispatch_get_main_queue(), note("main "));
  loop.runDue("tracking");
  EXPECT_EQ(std::exchange(ran, ""), "tracking posted ");
  loop.runDue();
  EXPECT_EQ(std::exchange(ran, ""), "default common main ") << "the main queue belongs to the common modes";

  loop.addCommonMode("tracking");
  loop.performAfter(0, note("common "), NSRunLoopCommonModes);
  dispatch_async(dispatch_get_main_queue(), note("main "));
  loop.runDue("tracking");
  EXPECT_EQ(ran, "common main ");
}

TEST(RunLoop, ReturnsAsItsContractSays) {
  TestClock clock;
  std::thread([&] {
    RunLoop& loop = RunLoop::current();
    const double now = monotonicSeconds();
    EXPECT_FALSE(loop.runMode(NSDefaultRunLoopMode, now + 10)) << "nothing is attached";
    loop.runUntil(now + 10);

    int ran = 0;
    loop.performAfter(0, [&] { ++ran; });
    EXPECT_FALSE(loop.runMode("tracking", now + 10)) << "attached to another mode";
    EXPECT_TRUE(loop.runMode(NSDefaultRunLoopMode, now + 10)) << "ends when nothing is attached any more";
    EXPECT_EQ(ran, 1);

    loop.perform([&] { ++ran; });
    loop.perform([&] { ++ran; });
    EXPECT_TRUE(loop.runMode(NSDefaultRunLoopMode, std::numeric_limits<double>::infinity())) << "one batch";
    EXPECT_EQ(ran, 3);

    loop.performAfter(100, [&] { ++ran; });
    EXPECT_TRUE(loop.runMode(NSDefaultRunLoopMode, now)) << "attached, and at its limit";
    EXPECT_TRUE(loop.runMode(NSDefaultRunLoopMode, kNotANumber)) << "no number is no time to wait";
    EXPECT_EQ(ran, 3);
  }).join();
}

TEST(RunLoop, DelayedWorkDoesNotEndAWaitButPostedWorkDoes) {
  TestClock clock;
  RunLoop& loop = RunLoop::current();
  const double start = monotonicSeconds();
  std::vector<double> firedAt;
  for (const double delay : {1.0, 2.0, 3.0}) {
    loop.performAfter(delay, [&] { firedAt.push_back(monotonicSeconds() - start); });
  }
  EXPECT_TRUE(loop.runMode(NSDefaultRunLoopMode, start + 2.5));
  EXPECT_EQ(firedAt, (std::vector<double>{1, 2}));
  EXPECT_EQ(monotonicSeconds(), start + 2.5);

  loop.performAfter(0.25, [] { dispatch_async(dispatch_get_main_queue(), [] {}); });
  EXPECT_TRUE(loop.runMode(NSDefaultRunLoopMode, start + 100));
  EXPECT_EQ(monotonicSeconds(), start + 2.75) << "the main queue ended the wait";

  loop.runUntil(start + 4);
  EXPECT_EQ(firedAt.size(), 3u);
  EXPECT_EQ(monotonicSeconds(), start + 4);
}

TEST(RunLoop, CancelsWhatHasTheSameTargetSelectorAndArgument) {
  TestClock clock;
  RunLoop& loop = RunLoop::current();
  const std::string a = "a";
  const std::string alsoA = "a";
  const struct {
    const char* why;
    std::vector<PerformKey> scheduled;
    std::function<void()> cancel;
    int left;
  } rows[] = {
      {"both of two equal ones, and nothing else",
       {{&target, &selectorA}, {&target, &selectorA}, {&otherTarget, &selectorA}, {&target, &selectorB}},
       [] { cancelText(&target, &selectorA, nullptr); },
       2},
      {"nothing but an equal argument",
       {{&target, &selectorA, &a}, {&target, &selectorA}},
       [&] { cancelText(&target, &selectorA, &alsoA); },
       1},
      {"everything of a target",
       {{&target, &selectorA, &a}, {&target, &selectorB}, {&otherTarget, &selectorA}},
       [] { RunLoop::current().cancelPerforms(&target); },
       1},
      {"nothing of the unknown", {}, [] { cancelText(&target, &selectorA, nullptr); }, 0},
      {"nothing from another thread",
       {{&target, &selectorA}},
       [] { std::thread([] { cancelText(&target, &selectorA, nullptr); }).join(); },
       1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    int ran = 0;
    auto held = std::make_shared<int>(0);
    for (const PerformKey& key : row.scheduled) loop.performAfterDelay(key, 1, Work([held, &ran] { ++ran; }));
    loop.performAfterDelay({&otherTarget, &selectorB}, 1, Work([] {}), "tracking");
    row.cancel();
    EXPECT_EQ(held.use_count(), 1 + row.left) << "what is cancelled lets go at once";
    clock.advance(2);
    EXPECT_EQ(ran, row.left);
  }
  clock.advance(2, "tracking");
}

TEST(RunLoop, TakesPostsFromOtherThreadsAndWakes) {
  std::shared_ptr<RunLoop> loop;
  std::latch ready(1);
  std::vector<int> order;
  bool done = false;
  std::thread runner([&] {
    RunLoopSource keepsAttached([] {});
    loop = RunLoop::current().shared_from_this();
    ready.count_down();
    while (!done) RunLoop::current().runMode(NSDefaultRunLoopMode, std::numeric_limits<double>::infinity());
  });
  ready.wait();
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(loop->perform([&order, i] { order.push_back(i); }));
  EXPECT_TRUE(loop->perform([&done] { done = true; }));
  runner.join();
  ASSERT_EQ(order.size(), 100u);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
  auto held = std::make_shared<int>(0);
  EXPECT_FALSE(loop->perform([held] {})) << "its thread has ended";
  EXPECT_EQ(held.use_count(), 1);
}

TEST(RunLoop, WaitsOnTheRealClockUntilItsDeadlines) {
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

TEST(RunLoop, AThreadThatEndsDropsItsWorkAndLetsGoOfWhatItHeld) {
  struct Witness {
    explicit Witness(std::atomic<int>* itsCount) : count(itsCount), thread(std::this_thread::get_id()) {}
    ~Witness() {
      // What is destroyed late may still turn to its run loop.
      RunLoop::current().performAfter(0, [] {});
      RunLoop::current().cancelPerforms({this, &selectorA}, nullptr);
      RunLoop::current().perform([] {});
      if (std::this_thread::get_id() == thread) ++*count;
    }
    std::atomic<int>* count;
    std::thread::id thread;
  };
  std::atomic<int> released{0};
  std::thread([&] {
    RunLoop& loop = RunLoop::current();
    const auto held = [&] { return [witness = std::make_shared<Witness>(&released)] { ADD_FAILURE() << "it ran"; }; };
    loop.performAfterDelay({&target, &selectorA}, 5, Work(held()));
    loop.performAfter(5, held(), "tracking");
    loop.perform(held());
  }).join();
  EXPECT_EQ(released, 3);
}

TEST(RunLoop, AnExceptionPassesThroughAndLeavesTheRestWaiting) {
  TestClock clock;
  RunLoop& loop = RunLoop::current();
  int ran = 0;
  loop.perform([] { throw std::runtime_error("posted"); });
  loop.perform([&] { ++ran; });
  loop.performAfter(0, [] { throw std::runtime_error("delayed"); });
  loop.performAfter(0, [&] { ++ran; });
  EXPECT_THROW(loop.runDue(), std::runtime_error);
  EXPECT_EQ(ran, 0);
  EXPECT_THROW(loop.runDue(), std::runtime_error);
  EXPECT_EQ(ran, 1);
  loop.runDue();
  EXPECT_EQ(ran, 2);
}

TEST(RunLoopSource, HandlesSignalsOnItsLoopOnceForAllThatCameBefore) {
  TestClock clock;
  int handled = 0;
  std::unique_ptr<RunLoopSource> source;
  source = std::make_unique<RunLoopSource>([&] {
    if (++handled == 1) source->signal();
  });
  EXPECT_FALSE(RunLoop::current().runDue());
  std::thread([&] {
    source->signal();
    source->signal();
  }).join();
  EXPECT_TRUE(RunLoop::current().runDue());
  EXPECT_EQ(handled, 1);
  EXPECT_TRUE(RunLoop::current().runDue()) << "signalled again from inside its handler";
  EXPECT_EQ(handled, 2);
  source->signal();
  source.reset();
  clock.runDue();
  EXPECT_EQ(handled, 2) << "a signal dies with its source";
  EXPECT_THROW(RunLoopSource(nullptr), NSException);
  std::thread([] {
    RunLoopSource attached([] {}, "tracking");
    RunLoop::current().perform([] {}, "tracking");
    EXPECT_TRUE(RunLoop::current().runMode("tracking", monotonicSeconds() + 1));
  }).join();
}

}  // namespace
