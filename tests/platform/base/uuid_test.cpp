// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/base/uuid.h>

#include <unordered_set>

namespace havrin {
namespace {

TEST(UuidValue, ReadsThirtySixCharactersOrNothing) {
  const struct {
    std::string_view text;
    std::string_view printed;  // "" for no identifier
    const char* why;
  } rows[] = {
      {"e621e1f8-c36c-495a-93fc-0c247a3e6e5f", "E621E1F8-C36C-495A-93FC-0C247A3E6E5F", "lower case"},
      {"E621E1F8-C36C-495A-93FC-0C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0C247A3E6E5F", "upper case"},
      {"", "", "empty"},
      {"E621E1F8-C36C-495A-93FC-0C247A3E6E5", "", "35 characters"},
      {"E621E1F8-C36C-495A-93FC-0C247A3E6E5F0", "", "37 characters"},
      {"G621E1F8-C36C-495A-93FC-0C247A3E6E5F", "", "no digit"},
      {"E621E1F8-C36C-495A-93FC00C247A3E6E5F", "", "a dash missing"},
      {std::string_view("E621E1F8-C36C-495A-93FC-0C247A3E6E5\0", 36), "", "a null character"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    const std::optional<UUID> read = UUID::fromString(row.text);
    EXPECT_EQ(read ? read->uuidString() : "", row.printed);
  }
}

TEST(UuidValue, KeepsItsBytesInTextOrder) {
  const UUID read = UUID::fromString("00010203-0405-0607-0809-0A0B0C0D0E0F").value();
  for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(read.bytes()[i], i);
  EXPECT_EQ(UUID(read.bytes()), read);
  EXPECT_EQ(std::unordered_set<UUID>({read, UUID(), UUID(read.bytes()), UUID(UUID::Bytes{})}).size(), 2u);
}

}  // namespace
}  // namespace havrin
