#include <HavrinFoundation/frame/locked.h>
#include <HavrinFoundation/frame/unfair_lock.h>

#include <gtest/gtest.h>

#include <barrier>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using namespace havrin;

bool isFree(UnfairLock& lock) {
  return std::async(std::launch::async,
                    [&] {
                      if (!lock.tryLock()) return false;
                      lock.unlock();
                      return true;
                    })
      .get();
}

TEST(UnfairLock, IsHeldFromLockToUnlock) {
  UnfairLock lock;
  EXPECT_TRUE(isFree(lock));
  lock.lock();
  EXPECT_FALSE(isFree(lock));
  lock.unlock();
  ASSERT_TRUE(lock.tryLock());
  EXPECT_FALSE(isFree(lock));
  lock.unlock();
}

TEST(UnfairLock, PassesOnWhateverTheClosureReturns) {
  UnfairLock lock;
  int value = 7;
  int& reference = value;
  EXPECT_EQ(*lock.withLock([] { return std::make_unique<int>(42); }), 42);
  EXPECT_FALSE(lock.withLock([&] { return isFree(lock); })) << "the closure runs with the lock held";
  static_assert(std::is_void_v<decltype(lock.withLock([] {}))>);
  static_assert(std::is_same_v<decltype(lock.withLock([&]() -> int& { return reference; })), int>,
                "nothing guarded leaves by reference");
  EXPECT_TRUE(isFree(lock));
}

TEST(UnfairLock, IsFreeAfterTheClosureThrew) {
  UnfairLock lock;
  EXPECT_THROW(lock.withLock([]() -> int { throw std::runtime_error("out"); }), std::runtime_error);
  EXPECT_TRUE(isFree(lock));

  Locked<int> box(1);
  EXPECT_THROW(box.perform([](int& content) {
    content = 2;
    throw std::string("out");
  }),
               std::string);
  EXPECT_EQ(box.perform([](int& content) { return content; }), 2) << "what the operation left stays";
}

// Counts what happens to a content that can only be moved.
struct Content {
  explicit Content(int* count) : destroyed(count) {}
  Content(Content&& other) noexcept : destroyed(std::exchange(other.destroyed, nullptr)) {}
  Content& operator=(Content&& other) noexcept {
    std::swap(destroyed, other.destroyed);
    return *this;
  }
  ~Content() {
    if (destroyed != nullptr) ++*destroyed;
  }
  int* destroyed;
};

TEST(Locked, TakesItsContentOverAndDestroysItOnce) {
  int first = 0;
  int second = 0;
  {
    Locked<Content> box{Content(&first)};
    EXPECT_EQ(first, 0);
    box.perform([&](Content& content) { content = Content(&second); });
    EXPECT_EQ(first, 1) << "replaced";
    EXPECT_EQ(box.perform([](Content& content) { return content.destroyed; }), &second);
    EXPECT_EQ(second, 0);
  }
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 1);
  static_assert(!std::is_copy_constructible_v<Locked<int>> && !std::is_move_constructible_v<Locked<int>>);
  static_assert(!std::is_copy_constructible_v<UnfairLock> && !std::is_move_constructible_v<UnfairLock>);
}

TEST(Locked, GuardsItsContentAgainstEightThreads) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 100'000;
  Locked<long> box(0);
  std::barrier start(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int round = 0; round < kRounds; ++round) box.perform([](long& content) { ++content; });
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(box.perform([](long& content) { return content; }), long{kThreads} * kRounds);
}

TEST(LockedDeathTest, StopsTheProcessWhenEnteredFromItsOwnOperation) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  Locked<int> box(0);
  EXPECT_DEATH(box.perform([&](int&) { box.perform([](int&) {}); }), "os_unfair_lock: locked again");
}

}  // namespace
