#include <HavrinFoundation/platform/dispatch/unfair_lock_word.h>

#include <sys/wait.h>
#include <unistd.h>

#include <barrier>
#include <future>

#include "../../testing.h"

namespace {

using namespace havrin;

TEST(UnfairLockWord, IsZeroExactlyWhileFreeAndTriedWithoutWaiting) {
  os_unfair_lock lock{};
  EXPECT_EQ(os_unfair_lock_copy(lock)._os_unfair_lock_opaque, 0u);
  ASSERT_TRUE(os_unfair_lock_trylock(&lock));
  EXPECT_NE(os_unfair_lock_copy(lock)._os_unfair_lock_opaque, 0u);
  EXPECT_FALSE(os_unfair_lock_trylock(&lock)) << "also its holder is told no, without an abort";
  EXPECT_FALSE(std::async(std::launch::async, [&] { return os_unfair_lock_trylock(&lock); }).get());
  os_unfair_lock_unlock(&lock);
  EXPECT_EQ(os_unfair_lock_copy(lock)._os_unfair_lock_opaque, 0u);
}

TEST(UnfairLockWord, LetsOneThreadInAtATime) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 100'000;
  os_unfair_lock lock{};
  int total = 0;
  std::barrier start(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int round = 0; round < kRounds; ++round) {
        UnfairLockGuard guard(lock);
        ++total;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(total, kThreads * kRounds);
  EXPECT_EQ(os_unfair_lock_copy(lock)._os_unfair_lock_opaque, 0u) << "no waiter's mark is left behind";
}

TEST(UnfairLockWord, WakesEverySleeper) {
  // Everybody sleeps behind one holder; each that gets the lock must wake the next.
  constexpr int kSleepers = 6;
  os_unfair_lock lock{};
  int through = 0;
  os_unfair_lock_lock(&lock);
  std::vector<std::thread> sleepers;
  for (int i = 0; i < kSleepers; ++i) {
    sleepers.emplace_back([&] {
      UnfairLockGuard guard(lock);
      ++through;
    });
  }
  while ((os_unfair_lock_copy(lock)._os_unfair_lock_opaque & 0x8000'0000) == 0) std::this_thread::yield();
  os_unfair_lock_unlock(&lock);
  for (std::thread& sleeper : sleepers) sleeper.join();
  EXPECT_EQ(through, kSleepers);
}

TEST(UnfairLockWord, IsStillHeldByTheThreadThatForked) {
  os_unfair_lock lock{};
  os_unfair_lock_lock(&lock);
  const pid_t child = fork();
  if (child == 0) {
    os_unfair_lock_unlock(&lock);
    const bool taken = os_unfair_lock_trylock(&lock);
    _exit(taken ? 0 : 1);
  }
  os_unfair_lock_unlock(&lock);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

void lockTwice() {
  os_unfair_lock lock{};
  os_unfair_lock_lock(&lock);
  os_unfair_lock_lock(&lock);
}

void unlockForAnother() {
  os_unfair_lock lock{};
  std::thread([&] { os_unfair_lock_lock(&lock); }).join();
  os_unfair_lock_unlock(&lock);
}

void unlockFree() {
  os_unfair_lock lock{};
  os_unfair_lock_unlock(&lock);
}

TEST(UnfairLockWordDeathTest, StopsTheProcessWithOneLineWhenMisused) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(lockTwice(), "os_unfair_lock: locked again by the thread that holds it\n");
  EXPECT_DEATH(unlockForAnother(), "os_unfair_lock: unlocked by a thread that does not hold it\n");
  EXPECT_DEATH(unlockFree(), "os_unfair_lock: unlocked while free\n");
}

}  // namespace
