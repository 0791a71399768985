// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/platform/base/wide_instructions.h>
#include <HavrinFoundation/text/hex.h>
#include <HavrinFoundation/text/hex_messages.h>

#include <span>

namespace {

std::string printed(std::span<const std::byte> bytes) {
  std::string text;
  char pair[3];
  for (const std::byte byte : bytes) {
    std::snprintf(pair, sizeof pair, "%02x", std::to_integer<unsigned>(byte));
    text += pair;
  }
  return text;
}

TEST(Hex, WritesEveryByteInEveryPlaceOfEveryLength) {
  using havrin::detail::WideInstructions;
  std::vector<std::byte> bytes(600);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::byte>(i * 7);  // all values, 256 apart
  for (const auto body : {WideInstructions::absent, WideInstructions::unknown}) {
    havrin::detail::wideInstructions = body;
    for (std::size_t size = 0; size <= 300; ++size) {
      for (const std::size_t begin : {std::size_t{0}, size}) {
        const auto part = std::span(bytes).subspan(begin, size);
        ASSERT_EQ(havrin::hexString(part), printed(part)) << size;
      }
    }
  }
  EXPECT_EQ(utf8(*havrin::send<"hexString">(havrin::makeData(std::string_view("\x01\xAB\xFF")))), "01abff");
}

}  // namespace
