#include <HavrinFoundation/dates/zero_uuid.h>

#include <gtest/gtest.h>

namespace havrin {
namespace {

TEST(ZeroUuid, IsAllZeros) {
  EXPECT_EQ(zero<UUID>().uuidString(), "00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(zero<UUID>(), UUID::fromString("00000000-0000-0000-0000-000000000000"));
}

}  // namespace
}  // namespace havrin
