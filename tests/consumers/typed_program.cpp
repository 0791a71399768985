// SPDX-License-Identifier: Apache-2.0
// A program of typed forms alone, which links HavrinFoundation::Typed and nothing else of the library.
#include <HavrinFoundation/Typed.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

using namespace havrin;

int main() {
  const auto link = URL::fromString("https://example.org/?utm_source=mail");
  const auto parameters = fromUrl<UTMParameters>(link);
  Locked<std::string> text(friendlyNumber(12'345));
  const std::string_view document = R"({"levels": [1, "x", 3]})";
  const auto levels = JSONDecoder().read(document, [](Decoder& decoder) {
    return decodeArraySkippingInvalidElements<std::int64_t>(decoder.container(), "levels");
  });
  const bool holds = levels == std::vector<std::int64_t>{1, 3} && parameters && parameters->source == "mail" &&
                     text.perform([](std::string& value) { return value == "12.3k"; }) &&
                     numberOfCalendarDays(Date(), dateByAddingDays(Date(), 3)) == 3 &&
                     hexString(std::as_bytes(std::span("\x01\xff", 2))) == "01ff" && groupedSHA256("").has_value() &&
                     containsOnlyCharacters("c0ffee", hexadecimal<CharacterSet>());
  if (!holds) std::fputs("a typed form gave a wrong answer\n", stderr);
  return holds ? 0 : 1;
}
