// SPDX-License-Identifier: Apache-2.0
// Cleaning and reading colour codes: what is read is written back as the cleaned digits, and cleaning twice changes
// nothing.
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace havrin;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

std::string upper(std::string_view digits) {
  std::string result;
  for (const char digit : digits) result += static_cast<char>(std::toupper(static_cast<unsigned char>(digit)));
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view code(reinterpret_cast<const char*>(data), size);
  const auto clean = detail::sanitizedHexCode(code);
  const Strong<UIColor> colour = fromHexString<UIColor>(code);
  require(static_cast<bool>(clean) == static_cast<bool>(colour));
  const std::size_t characters = characterCount(code);
  if (characters < 6 || characters > 11) require(!clean);
  if (!clean) return 0;

  const auto again = detail::sanitizedHexCode(clean->view());
  require(again && again->view() == clean->view());
  std::string expected = "#" + upper(clean->view());
  if (expected.size() == 9 && expected.ends_with("FF")) expected.resize(7);
  require(hexString(*colour) == expected);
  return 0;
}
