#include <HavrinFoundation/frame/unfair_lock_messages.h>

#include <memory>
#include <stdexcept>

#include <HavrinFoundation/platform/object/exception.h>
#include <gtest/gtest.h>

using namespace havrin;

namespace {

std::uint32_t word(const Strong<message::UnfairLock>& lock) { return send<"lock">(lock)._os_unfair_lock_opaque; }

TEST(MessageUnfairLock, HoldsItsWordDuringTheBlockOnly) {
  const Strong<message::UnfairLock> lock = send<"init">(alloc<message::UnfairLock>());
  EXPECT_EQ(word(lock), 0U);
  std::uint32_t inside = 0;
  send<"withLock:">(lock, [&] { inside = word(lock); });
  EXPECT_NE(inside, 0U);
  EXPECT_EQ(word(lock), 0U);
  EXPECT_THROW(send<"withLock:">(lock, [] { throw std::runtime_error("no"); }), std::runtime_error);
  EXPECT_EQ(word(lock), 0U);
  EXPECT_THROW(send<"withLock:">(lock, nullptr), NSException);
  EXPECT_EQ(word(lock), 0U);
  EXPECT_EQ(classOf(*lock).name(), "UnfairLock");
}

TEST(MessageUnfairLock, LetsGoOfTheBlockBeforeTheLock) {
  struct Probe {
    const Strong<message::UnfairLock>& lock;
    std::uint32_t& atEnd;
    ~Probe() { atEnd = word(lock); }
  };
  const auto lock = make<message::UnfairLock>();
  std::uint32_t atEnd = 0;
  Block<void()> block;
  block = [&block, probe = std::shared_ptr<Probe>(new Probe{lock, atEnd})] { block = nullptr; };
  send<"withLock:">(lock, block);
  EXPECT_NE(atEnd, 0U);
}

TEST(MessageUnfairLock, SurvivesABlockThatDropsTheLastReference) {
  auto lock = make<message::UnfairLock>();
  const Weak<message::UnfairLock> weak = lock;
  send<"withLock:">(lock, [&lock] { lock = nullptr; });
  EXPECT_FALSE(weak.lock());
}

}  // namespace
