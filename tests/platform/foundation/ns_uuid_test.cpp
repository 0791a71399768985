// SPDX-License-Identifier: Apache-2.0
// UUID and NSUUID, which reads and writes by it.
#include "../../objects.h"
#include <HavrinFoundation/platform/base/uuid.h>
#include <HavrinFoundation/platform/foundation/ns_uuid.h>

#include <unordered_set>

namespace havrin {
namespace {

TEST(NSUUID, ReadsThirtySixCharactersOrNothing) {
  for (const auto& [text, printed, why] : Rows<std::string_view, std::string_view, const char*>{
           {"e621e1f8-c36c-495a-93fc-0c247a3e6e5f", "E621E1F8-C36C-495A-93FC-0C247A3E6E5F", "lower case"},
           {"E621E1F8-C36C-495A-93FC-0C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0C247A3E6E5F", "upper case"},
           {"", "nil", "empty"},
           {"E621E1F8-C36C-495A-93FC-0C247A3E6E5", "nil", "35 characters"},
           {"E621E1F8-C36C-495A-93FC-0C247A3E6E5F0", "nil", "37 characters"},
           {"G621E1F8-C36C-495A-93FC-0C247A3E6E5F", "nil", "not a digit"},
           {"E621E1F8-C36C-495A-93FC00C247A3E6E5F", "nil", "a dash missing"},
           {std::string_view("E621E1F8-C36C-495A-93FC-0C247A3E6E5\0", 36), "nil", "a null character"},
       }) {
    SCOPED_TRACE(why);
    const std::optional<UUID> value = UUID::fromString(text);
    EXPECT_EQ(value ? value->uuidString() : "nil", printed);
    const Strong<NSUUID> object = alloc<NSUUID>()->initWithUUIDString(s(text));
    EXPECT_EQ(object ? utf8(*object->uuidString()) : "nil", printed);
    if (object) {
      EXPECT_EQ(object->value(), value);
    }
  }
  EXPECT_FALSE(alloc<NSUUID>()->initWithUUIDString(nullptr));
}

TEST(NSUUID, KeepsItsBytesInTextOrderAndIsEqualByThem) {
  const UUID read = UUID::fromString("00010203-0405-0607-0809-0A0B0C0D0E0F").value();
  for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(read.bytes()[i], i);
  EXPECT_EQ(std::unordered_set<UUID>({read, UUID(), UUID(read.bytes()), UUID(UUID::Bytes{})}).size(), 2u);
  EXPECT_EQ(make<NSUUID>(read)->getUUIDBytes(), read.bytes());
  expectEquality(make<NSUUID>(read), {make<NSUUID>(read)}, {make<NSUUID>(), s(read.uuidString())});
}

}  // namespace
}  // namespace havrin
