// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/foundation/ns_uuid.h>
#include <HavrinFoundation/platform/foundation/string.h>

namespace havrin {
namespace {

TEST(NSUUID, ReadsItsTextOrIsNull) {
  const Strong<NSString> text = makeString("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
  const Strong<NSUUID> uuid = alloc<NSUUID>()->initWithUUIDString(text);
  ASSERT_TRUE(uuid);
  EXPECT_EQ(utf8(*uuid->uuidString()), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
  EXPECT_EQ(uuid->value(), UUID::fromString(utf8(*text)));
  EXPECT_EQ(uuid->getUUIDBytes()[15], 0x5F);
  EXPECT_FALSE(alloc<NSUUID>()->initWithUUIDString(makeString("nonsense")));
  EXPECT_FALSE(alloc<NSUUID>()->initWithUUIDString(nullptr));
  const Strong<NSUUID> same = make<NSUUID>(uuid->value());
  EXPECT_TRUE(uuid->isEqual(same) && uuid->hash() == same->hash());
  EXPECT_FALSE(uuid->isEqual(make<NSUUID>()) || uuid->isEqual(nullptr) || uuid->isEqual(text));
}

}  // namespace
}  // namespace havrin
