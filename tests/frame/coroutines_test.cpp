// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/frame/coroutines.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

using namespace havrin;

TEST(Coroutines, GoOnAfterADelayAndOnTheMainQueue) {
  TestClock clock;
  std::string log;
  const auto wait = [&]() -> Detached {
    co_await onMainQueue();  // where it is
    log += "now ";
    co_await delay(2);
    log += "later ";
  };
  wait();
  EXPECT_EQ(log, "now ");
  clock.advance(2);
  EXPECT_EQ(log, "now later ");

  const auto move = [&]() -> Detached {
    log = isMainThread() ? "main " : "other ";
    co_await onMainQueue();
    log += isMainThread() ? "main" : "other";
  };
  std::thread([&] { move(); }).join();
  clock.advance(0);
  EXPECT_EQ(log, "other main");
}

TEST(Coroutines, AwaitTheAsynchronousMap) {
  const Strong<NSArray> numbers = makeArray({makeNumber(1), makeNumber(2)});
  const AsyncTransform atOnce = [](NSObject* number, const AsyncCompletion& done) {
    done(number);
    done(number);
  };
  AsyncCompletion kept;
  const AsyncTransform later = [&](NSObject*, const AsyncCompletion& done) { kept = done; };
  const AsyncTransform never = [](NSObject*, const AsyncCompletion&) {
    throw NSException(NSGenericException, "refused");
  };
  std::string log;
  int rounds = 0;
  const auto map = [&]() -> Detached {
    for (; rounds < 100'000; ++rounds) (void)co_await asyncMapped(numbers, atOnce);  // in constant stack
    log += (co_await asyncMapped(nullptr, atOnce)) ? "an array " : "null ";
    log += utf8(*(co_await asyncMapped(numbers, later))->description()) + " ";
    try {
      (void)co_await asyncMapped(numbers, never);
    } catch (const NSException& refusal) {
      log += refusal.reason();
    }
  };
  map();
  EXPECT_EQ(rounds, 100'000);
  EXPECT_EQ(log, "null ");
  kept(makeNumber(3));
  kept(makeNumber(4));
  EXPECT_EQ(log, "null (3, 4) refused");
}

}  // namespace
