// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/dates/zero_uuid.h>
#include <HavrinFoundation/dates/zero_uuid_messages.h>
#include <HavrinFoundation/platform/object/string.h>

#include <array>

namespace havrin {
namespace {

TEST(ZeroUuid, IsOneObjectForAllThreads) {
  std::array<Strong<NSUUID>, 8> found;
  onThreads(found.size(),
            [&](std::size_t i) { found[i] = i % 2 == 0 ? zero<NSUUID>() : send<"zero">(classOf<NSUUID>()); });
  for (const Strong<NSUUID>& uuid : found) EXPECT_EQ(uuid, found[0]);
}

TEST(ZeroUuid, IsAllZeros) {
  EXPECT_EQ(zero<UUID>().uuidString(), "00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(zero<NSUUID>()->getUUIDBytes(), UUID::Bytes{});
  EXPECT_TRUE(make<NSUUID>(zero<UUID>())->isEqual(zero<NSUUID>()));
  class Named : public Object<Named, NSUUID> {};
  EXPECT_EQ(zero<Named>(), zero<NSUUID>()) << "as the message sent to a subclass";
}

}  // namespace
}  // namespace havrin
