// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/base/unfair_lock_word.h>

#include <latch>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace havrin;

TEST(UnfairLockWord, WakesEverySleeper) {
  // Everybody sleeps behind one holder; each that gets the lock must wake the next.
  os_unfair_lock lock{};
  int through = 0;
  std::latch held(1);
  onThreads(7, [&](std::size_t thread) {
    if (thread != 0) {
      held.wait();
      UnfairLockGuard guard(lock);
      ++through;
      return;
    }
    os_unfair_lock_lock(&lock);
    EXPECT_FALSE(os_unfair_lock_trylock(&lock)) << "a try by the holder is refused, without an abort";
    held.count_down();
    while ((os_unfair_lock_copy(lock)._os_unfair_lock_opaque & 0x8000'0000) == 0) std::this_thread::yield();
    os_unfair_lock_unlock(&lock);
  });
  EXPECT_EQ(through, 6);
  EXPECT_EQ(os_unfair_lock_copy(lock)._os_unfair_lock_opaque, 0u) << "no waiter's mark is left behind";
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

TEST(UnfairLockWordDeathTest, StopsTheProcessWithOneLineWhenMisused) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  os_unfair_lock lock{};
  EXPECT_DEATH(os_unfair_lock_unlock(&lock), "os_unfair_lock: unlocked while free\n");
  os_unfair_lock_lock(&lock);
  EXPECT_DEATH(os_unfair_lock_lock(&lock), "os_unfair_lock: locked again by the thread that holds it\n");
  EXPECT_DEATH(std::thread([&] { os_unfair_lock_unlock(&lock); }).join(),
               "os_unfair_lock: unlocked by a thread that does not hold it\n");
}

}  // namespace
