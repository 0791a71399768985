// SPDX-License-Identifier: Apache-2.0
// Character tests: the input's first line gives the members of a set (behind a "^", all others), the rest is text. In
// UTF-8 and in UTF-16, by the plain and by the wide body, the answers are those of a look at one scalar after the other.
#include <HavrinFoundation/platform/base/wide_instructions.h>
#include <HavrinFoundation/platform/unicode/unicode.h>
#include <HavrinFoundation/text/string_helpers.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using havrin::CharacterSet;

void require(bool right) {
  if (!right) std::abort();
}

CharacterSet setFrom(std::string_view members) {
  const bool inverted = members.starts_with('^');
  if (inverted) members.remove_prefix(1);
  const CharacterSet set(members);
  return inverted ? set.inverted() : set;
}

template <class Text>
std::size_t firstSlowly(Text text, const CharacterSet& set, bool member) {
  std::size_t i = 0;
  while (i < text.size()) {
    const auto scalar = havrin::scalarAt(text, i);
    if (set.contains(scalar.value) == member) break;
    i += scalar.length;
  }
  return i;
}

template <class Text>
void requireSearches(Text text, const CharacterSet& set) {
  require(set.firstMemberIn(text) == firstSlowly(text, set, true));
  require(set.firstOtherIn(text) == firstSlowly(text, set, false));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using havrin::detail::WideInstructions;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t line = std::min(input.find('\n'), size);
  const CharacterSet set = setFrom(input.substr(0, line));
  const std::string_view text = input.substr(std::min(line + 1, size));

  std::u16string units = havrin::utf16(text);
  std::u16string anyUnits(text.size() / 2, u'\0');  // lone surrogates too
  if (!anyUnits.empty()) std::memcpy(anyUnits.data(), text.data(), anyUnits.size() * 2);
  for (const auto body : {WideInstructions::absent, WideInstructions::unknown}) {
    havrin::detail::wideInstructions = body;
    requireSearches(text, set);
    requireSearches(std::u16string_view(units), set);
    requireSearches(std::u16string_view(anyUnits), set);
    require(containsAnyCharacters(text, set) == (set.firstMemberIn(units) != units.size()));
    require(containsOnlyCharacters(text, set) == !containsAnyCharacters(text, set.inverted()));
  }
  require(havrin::nsrange(text).length == units.size());
  return 0;
}
