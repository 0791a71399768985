// SPDX-License-Identifier: Apache-2.0
// Text of any bytes: what is repaired is well-formed and stays as it is, conversions agree with their lengths, and
// characters counted at once are those taken off one by one.
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

void require(bool right) {
  if (!right) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string repaired = havrin::repaired(text);
  const std::u16string units = havrin::utf16(text);
  require(havrin::isWellFormed(repaired) && havrin::isWellFormed(units));
  require(havrin::isWellFormed(text) == (repaired == text));
  require(havrin::utf16Length(text) == units.size() && havrin::utf8Length(units) == repaired.size());
  require(havrin::utf8(units) == repaired && havrin::utf16(repaired) == units);

  std::u16string any(size / 2, u'\0');
  if (!any.empty()) std::memcpy(any.data(), data, any.size() * 2);
  const std::string anyText = havrin::utf8(any);
  require(havrin::isWellFormed(anyText) && anyText.size() == havrin::utf8Length(any));
  require(havrin::isWellFormed(any) == (havrin::utf16(anyText) == any));

  std::size_t characters = 0;
  for (std::string_view rest = text; !rest.empty(); ++characters)
    rest.remove_prefix(havrin::firstCharacterLength(rest));
  require(havrin::characterCount(text) == characters);
  require(havrin::characterCount(repaired) == characters);
  return 0;
}
