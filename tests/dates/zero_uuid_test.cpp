// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/dates/zero_uuid.h>
#include <HavrinFoundation/dates/zero_uuid_messages.h>
#include <HavrinFoundation/platform/object/string.h>

namespace havrin {
namespace {

TEST(ZeroUuid, IsAllZeros) {
  EXPECT_EQ(zero<UUID>().uuidString(), "00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(zero<NSUUID>()->getUUIDBytes(), UUID::Bytes{});
  EXPECT_TRUE(make<NSUUID>(zero<UUID>())->isEqual(zero<NSUUID>()));
  class Named : public Object<Named, NSUUID> {};
  EXPECT_EQ(zero<Named>(), zero<NSUUID>());
  EXPECT_EQ(send<"zero">(classOf<Named>()), zero<NSUUID>());
}

}  // namespace
}  // namespace havrin
