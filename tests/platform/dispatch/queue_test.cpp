// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <future>
#include <latch>

namespace {

using namespace havrin;

// Addresses that serve as keys and values.
int firstKey;
int secondKey;
int valueA;
int valueB;

// Waits until everything queued so far on a serial queue has run.
void finish(const DispatchQueue& queue) {
  dispatch_sync(queue, [] {});
}

bool isBlocked(int signal) {
  sigset_t mask;
  pthread_sigmask(SIG_BLOCK, nullptr, &mask);
  return sigismember(&mask, signal) != 0;
}

TEST(Queue, ASerialQueueRunsOneAtATimeInOrder) {
  const DispatchQueue queue = dispatch_queue_create("line", DISPATCH_QUEUE_SERIAL);
  EXPECT_EQ(queue.label(), "line");
  std::vector<std::pair<std::size_t, int>> order;  // no lock: the queue is the guard
  onThreads(4, [&](std::size_t thread) {
    for (int round = 0; round < 2000; ++round) {
      const auto note = [&order, thread, round] { order.emplace_back(thread, round); };
      round % 8 == 0 ? dispatch_sync(queue, note) : dispatch_async(queue, note);
    }
  });
  finish(queue);
  EXPECT_EQ(order.size(), 8000u);
  auto expected = order;
  std::stable_sort(order.begin(), order.end(), [](auto a, auto b) { return a.first < b.first; });
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(order, expected) << "each thread's own in its order";
}

TEST(Queue, AConcurrentQueueRunsBlockedClosuresTogether) {
  constexpr int kTogether = 6;  // more than there are processors: threads that are blocked do not count
  for (const DispatchQueue& queue :
       {dispatch_get_global_queue(), dispatch_queue_create("side by side", DISPATCH_QUEUE_CONCURRENT)}) {
    std::barrier meeting(kTogether);
    std::latch done(kTogether);
    for (int i = 0; i < kTogether; ++i) {
      dispatch_async(queue, [&] {
        meeting.arrive_and_wait();
        EXPECT_TRUE(isBlocked(SIGTERM)) << "signals are for the application's own threads";
        done.count_down();
      });
    }
    done.wait();
    EXPECT_FALSE(isBlocked(SIGTERM));
    EXPECT_TRUE(done.try_wait()) << "and not the limit of the test run";
  }
}

TEST(Queue, QueuesThatTargetOneSerialQueueExcludeEachOther) {
  const DispatchQueue target = dispatch_queue_create("target", DISPATCH_QUEUE_SERIAL);
  const DispatchQueue queues[] = {dispatch_queue_create("a", DISPATCH_QUEUE_SERIAL, target),
                                  dispatch_queue_create("b", DISPATCH_QUEUE_CONCURRENT, target), target};
  int count = 0;  // no atomic: the target is the guard
  for (std::size_t round = 0; round < 500; ++round) {
    for (const DispatchQueue& queue : queues) dispatch_async(queue, [&count] { ++count; });
    if (round % 50 == 0) dispatch_sync(queues[round / 50 % 3], [&count] { ++count; });
  }
  // The concurrent queue has no order that `finish` could wait for; its turns are in the target's.
  for (const DispatchQueue& queue : queues) finish(queue);
  EXPECT_EQ(count, 3 * 500 + 10);
}

TEST(Queue, SpecificsAreLookedUpFromTheCurrentQueueToItsTargets) {
  const DispatchQueue target = dispatch_queue_create("target", DISPATCH_QUEUE_SERIAL);
  const DispatchQueue queue = dispatch_queue_create("queue", DISPATCH_QUEUE_SERIAL, target);
  const DispatchQueue stranger = dispatch_queue_create("stranger", DISPATCH_QUEUE_SERIAL);
  const auto seenOn = [](const DispatchQueue& on, const void* key = &firstKey) {
    void* synchronously = nullptr;
    dispatch_sync(on, [&] { synchronously = dispatch_get_specific(key); });
    std::promise<void*> later;
    dispatch_async(on, [&] { later.set_value(dispatch_get_specific(key)); });
    EXPECT_EQ(later.get_future().get(), synchronously);
    return synchronously;
  };
  dispatch_queue_set_specific(target, &firstKey, &valueA, nullptr);
  EXPECT_EQ(seenOn(target), &valueA);
  EXPECT_EQ(seenOn(queue), &valueA) << "through the target";
  EXPECT_EQ(seenOn(queue, &secondKey), nullptr) << "keys are addresses";
  EXPECT_EQ(seenOn(stranger), nullptr);
  EXPECT_EQ(dispatch_queue_get_specific(queue, &firstKey), nullptr) << "of this very queue";
  dispatch_queue_set_specific(queue, &firstKey, &valueB, nullptr);
  EXPECT_EQ(seenOn(queue), &valueB) << "the nearest";
  dispatch_queue_set_specific(queue, &firstKey, nullptr, nullptr);
  EXPECT_EQ(seenOn(queue), &valueA) << "taken away, so the target's again";
  dispatch_sync(queue, [&] { EXPECT_EQ(seenOn(stranger), nullptr) << "a sync inside a sync is not a target"; });
  dispatch_set_target_queue(stranger, queue);
  EXPECT_EQ(seenOn(stranger), &valueA) << "through two targets";
}

TEST(Queue, ReplacedSpecificsAreDestroyedOnTheGlobalQueue) {
  static std::atomic<int> destroyed;
  destroyed = 0;
  dispatch_queue_set_specific(dispatch_get_global_queue(), &secondKey, &valueB, nullptr);
  const auto destructor = [](void*) {
    EXPECT_EQ(dispatch_get_specific(&secondKey), &valueB);
    ++destroyed;
    destroyed.notify_all();
  };
  const auto waitFor = [](int count) {
    for (int seen = destroyed; seen < count; seen = destroyed) destroyed.wait(seen);
  };
  {
    const DispatchQueue queue = dispatch_queue_create("queue", DISPATCH_QUEUE_SERIAL);
    dispatch_queue_set_specific(queue, &firstKey, &valueA, destructor);
    dispatch_queue_set_specific(queue, &firstKey, &valueB, destructor);
    waitFor(1);
    dispatch_queue_set_specific(queue, &firstKey, nullptr, nullptr);
    waitFor(2);
    dispatch_queue_set_specific(queue, &firstKey, &valueA, destructor);
  }
  waitFor(3);
  dispatch_queue_set_specific(dispatch_get_global_queue(), &secondKey, nullptr, nullptr);
}

TEST(Queue, ASyncRunsOnTheCallingThreadAlsoWhenItHasToWait) {
  const DispatchQueue queue = dispatch_queue_create("line", DISPATCH_QUEUE_SERIAL);
  const auto expectHere = [&queue] {
    const auto self = std::this_thread::get_id();
    dispatch_sync(queue, [self] { EXPECT_EQ(std::this_thread::get_id(), self); });
    EXPECT_THROW(dispatch_sync(queue, [] { throw std::runtime_error("out"); }), std::runtime_error);
  };
  expectHere();
  std::latch begun(1);
  std::latch go(1);
  bool finished = false;
  dispatch_async(queue, [&] {
    begun.count_down();
    go.wait();
    finished = true;
  });
  begun.wait();
  std::thread caller([&] {
    expectHere();
    EXPECT_TRUE(finished);
  });
  go.count_down();
  caller.join();
  finish(queue);  // which is free again
}

TEST(Queue, ARetargetedQueueContinuesOnItsNewTarget) {
  const DispatchQueue marked = dispatch_queue_create("marked", DISPATCH_QUEUE_SERIAL);
  dispatch_queue_set_specific(marked, &firstKey, &valueA, nullptr);
  const DispatchQueue queue = dispatch_queue_create("queue", DISPATCH_QUEUE_SERIAL);
  std::latch begun(1);
  std::latch go(1);
  std::vector<void*> seen;
  const auto look = [&seen] { seen.push_back(dispatch_get_specific(&firstKey)); };
  dispatch_async(queue, [&] {
    begun.count_down();
    go.wait();
    look();
  });
  dispatch_async(queue, look);
  begun.wait();
  dispatch_async(queue, look);
  dispatch_set_target_queue(queue, marked);
  go.count_down();
  finish(queue);
  EXPECT_EQ(seen, (std::vector<void*>{nullptr, &valueA, &valueA})) << "the one that had begun stays where it is";
}

TEST(Queue, PendingClosuresKeepTheirQueueAndItsTarget) {
  std::promise<void*> seen;
  std::latch queued(1);
  {
    const DispatchQueue target = dispatch_queue_create("target", DISPATCH_QUEUE_SERIAL);
    const DispatchQueue queue = dispatch_queue_create("queue", DISPATCH_QUEUE_CONCURRENT, target);
    dispatch_queue_set_specific(target, &firstKey, &valueA, nullptr);
    dispatch_async(target, [&] { queued.wait(); });
    dispatch_async(queue, [&seen] { seen.set_value(dispatch_get_specific(&firstKey)); });
    queued.count_down();
  }
  EXPECT_EQ(seen.get_future().get(), &valueA);
}

TEST(Queue, ClosuresAreDestroyedOnTheQueueWhenTheyHaveRun) {
  const DispatchQueue queue = dispatch_queue_create("line", DISPATCH_QUEUE_SERIAL);
  dispatch_queue_set_specific(queue, &firstKey, &valueA, nullptr);
  std::string events;
  struct Witness {
    explicit Witness(std::string* itsEvents) : events(itsEvents) {}
    std::string* events;
    ~Witness() { *events += dispatch_get_specific(&firstKey) == &valueA ? "destroyed, " : "destroyed elsewhere, "; }
  };
  // One closure that fits where it is queued, one that needs memory of its own, and a block.
  dispatch_async(queue, [held = std::make_shared<Witness>(&events), &events] { events += "small "; });
  dispatch_async(queue, [held = std::make_shared<Witness>(&events), &events, padding = std::string(40, ' ')] {
    events += "large " + padding.substr(40);
  });
  dispatch_async(queue, Block<void()>([held = std::make_shared<Witness>(&events), &events] { events += "block "; }));
  finish(queue);
  EXPECT_EQ(events, "small destroyed, large destroyed, block destroyed, ");
}

TEST(Queue, NothingIsQueuedForANullBlock) {
  const DispatchQueue queue = dispatch_queue_create("line", DISPATCH_QUEUE_SERIAL);
  EXPECT_THROW(dispatch_async(queue, Block<void()>()), NSException);
  EXPECT_THROW(dispatch_async(queue, std::function<void()>()), NSException);
  EXPECT_THROW(dispatch_sync(queue, nullptr), NSException);
  EXPECT_THROW(dispatch_async(DispatchQueue(), [] {}), NSException);
  finish(queue);
}

TEST(QueueDeathTest, StopsTheProcessWithOneLine) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const DispatchQueue line = dispatch_queue_create("line", DISPATCH_QUEUE_SERIAL);
  const DispatchQueue above = dispatch_queue_create("above", DISPATCH_QUEUE_CONCURRENT, line);
  const DispatchQueue main = dispatch_get_main_queue();
  const DispatchQueue throughMain = dispatch_queue_create("m", DISPATCH_QUEUE_SERIAL, main);
  const auto nothing = [] {};
  for (const auto& [why, misuse, message] : Rows<const char*, std::function<void()>, const char*>{
           {"a sync onto what runs through a held queue",
            [&] { dispatch_sync(line, [&] { dispatch_sync(above, nothing); }); },
            "dispatch_sync: deadlock: the caller already runs on the queue line\n"},
           {"a sync from inside an async",
            [&] {
              dispatch_async(line, [&] { dispatch_sync(line, nothing); });
              finish(line);
            },
            "already runs on the queue line\n"},
           {"the main thread onto a queue through main", [&] { dispatch_sync(throughMain, nothing); },
            "already runs on the queue main\n"},
           {"an exception on the main queue",
            [&] {
              dispatch_async(main, [] { throw NSException(NSRangeException, "index 3 beyond 2"); });
              RunLoop::main().runMode(NSDefaultRunLoopMode, 1e9);
            },
            "an exception left a closure on the queue main: NSRangeException: index 3 beyond 2\n"},
           {"an exception of no known kind",
            [&] {
              dispatch_async(line, [] { throw 7; });
              finish(line);
            },
            "an exception left a closure on the queue line: it is not derived from std::exception\n"},
           {"a circle of targets", [&] { dispatch_set_target_queue(line, above); },
            "the target queue leads back to this queue\n"},
           {"a target for the main queue", [&] { dispatch_set_target_queue(main, line); },
            "the target of a global queue or of the main queue cannot be set\n"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_DEATH(misuse(), message);
  }
}

TEST(QueueDeathTest, AProcessEndsCleanlyWithWorkPending) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        const DispatchQueue line = dispatch_queue_create("line", DISPATCH_QUEUE_SERIAL);
        std::latch begun(1);
        std::promise<void> never;
        dispatch_async(line, [&] {
          begun.count_down();
          never.get_future().wait();
        });
        for (int i = 0; i < 100; ++i) {
          dispatch_async(line, [] {});
          dispatch_async(dispatch_get_main_queue(), [] {});
          dispatch_async(dispatch_get_global_queue(), [] {});
        }
        begun.wait();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
