// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/frame/locked.h>
#include <HavrinFoundation/frame/unfair_lock.h>
#include <HavrinFoundation/frame/unfair_lock_messages.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <future>
#include <type_traits>

namespace {

using namespace havrin;

bool isFree(UnfairLock& lock) {
  const auto tryElsewhere = [&] {
    if (!lock.tryLock()) return false;
    lock.unlock();
    return true;
  };
  return std::async(std::launch::async, tryElsewhere).get();
}

TEST(UnfairLock, ReturnsTheResultOfTheClosureThatItCallsLocked) {
  UnfairLock lock;
  if (!lock.tryLock()) FAIL();  // spelt so that clang's analysis follows it
  EXPECT_FALSE(isFree(lock));
  lock.unlock();
  int value = 7;
  int& reference = value;
  EXPECT_EQ(*lock.withLock([] { return std::make_unique<int>(42); }), 42);
  EXPECT_FALSE(lock.withLock([&] { return isFree(lock); })) << "the closure runs with the lock held";
  static_assert(std::is_void_v<decltype(lock.withLock([] {}))>);
  static_assert(std::is_same_v<decltype(lock.withLock([&]() -> int& { return reference; })), int>,
                "nothing guarded leaves by reference");
  EXPECT_TRUE(isFree(lock));
}

TEST(UnfairLock, IsUnlockedWhenTheClosureThrows) {
  UnfairLock lock;
  EXPECT_THROW(lock.withLock([]() -> int { throw std::runtime_error("out"); }), std::runtime_error);
  EXPECT_TRUE(isFree(lock));
  Locked<int> box(1);
  EXPECT_THROW(box.perform([](int& content) -> int { throw content = 2; }), int);
  EXPECT_EQ(box.perform([](int& content) { return content; }), 2) << "what the operation left stays";
}

std::uint32_t word(const Strong<message::UnfairLock>& lock) { return send<"lock">(lock)._os_unfair_lock_opaque; }

TEST(MessageUnfairLock, IsLockedDuringTheBlockAlone) {
  const Strong<message::UnfairLock> lock = send<"init">(alloc<message::UnfairLock>());
  EXPECT_EQ(word(lock), 0U);
  std::uint32_t inside = 0;
  send<"withLock:">(lock, [&] { inside = word(lock); });
  EXPECT_NE(inside, 0U);
  EXPECT_EQ(word(lock), 0U);
  EXPECT_THROW(send<"withLock:">(lock, [] { throw std::runtime_error("no"); }), std::runtime_error);
  EXPECT_THROW(send<"withLock:">(lock, nullptr), NSException);
  EXPECT_EQ(word(lock), 0U);
}

TEST(MessageUnfairLock, ReleasesTheBlockBeforeItUnlocksAndIsKeptByTheCall) {
  auto lock = make<message::UnfairLock>();
  const Weak<message::UnfairLock> weak = lock;
  std::uint32_t atEnd = 0;
  Block<void()> block;
  block = [&, held = std::shared_ptr<void>(nullptr, [&](void*) { atEnd = word(weak.lock()); })] { block = nullptr; };
  send<"withLock:">(lock, block);
  EXPECT_NE(atEnd, 0U);
  send<"withLock:">(lock, [&lock] { lock = nullptr; });
  EXPECT_FALSE(weak.lock());
}

TEST(Locked, MovesItsContentInAndDestroysItOnce) {
  const auto shared = std::make_shared<int>(1);
  {
    Locked<std::shared_ptr<int>> box{std::shared_ptr<int>(shared)};
    EXPECT_EQ(box.perform([](std::shared_ptr<int>& content) { return content.use_count(); }), 2);
  }
  EXPECT_EQ(shared.use_count(), 1);
  static_assert(!std::is_copy_constructible_v<Locked<int>> && !std::is_move_constructible_v<Locked<int>>);
  static_assert(!std::is_copy_constructible_v<UnfairLock> && !std::is_move_constructible_v<UnfairLock>);
}

TEST(Locked, GuardsItsContentAgainstEightThreads) {
  Locked<int> box(0);
  onThreads(8, [&box] {
    for (int round = 0; round < 100'000; ++round) box.perform([](int& content) { ++content; });
  });
  EXPECT_EQ(box.perform([](int& content) { return content; }), 800'000);
}

}  // namespace
