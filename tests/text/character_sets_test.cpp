// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/text/character_sets.h>
#include <HavrinFoundation/text/character_sets_messages.h>

namespace {

using namespace havrin;

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

// The members below U+0080, and whether there are any above.
std::string membersOf(const CharacterSet& set) {
  std::string members;
  for (char32_t scalar = 0; scalar < 0x80; ++scalar) {
    if (set.contains(scalar)) members += static_cast<char>(scalar);
  }
  CharacterSet others = set;
  others.remove({U'\0', U'\x7F'});
  return others == CharacterSet() ? members : members + "...";
}

std::string sorted(std::string_view characters) { return membersOf(CharacterSet(characters)); }

// What every surface gives for one of the sets; "differing" if they do not agree.
template <Text Selector>
std::string givenBy(const CharacterSet& value, const Strong<NSCharacterSet>& object) {
  const auto sent = send<Selector>(classOf<NSCharacterSet>());
  const std::string members = membersOf(value);
  return members == membersOf(object->characterSet()) && members == membersOf(sent->characterSet()) ? members
                                                                                                    : "differing";
}
std::string urlSchemeAllowedOnEachSurface() {
  return givenBy<"h_URLSchemeAllowedCharacterSet">(urlSchemeAllowed<CharacterSet>(),
                                                   urlSchemeAllowed<NSCharacterSet>());
}
std::string validSubhavrinNameOnEachSurface() {
  return givenBy<"validSubhavrinNameCharacterSet">(validSubhavrinName<CharacterSet>(),
                                                   validSubhavrinName<NSCharacterSet>());
}

// Runs first: nothing has been read or written before it.
TEST(CharacterSets, FirstUseFromManyThreadsAndByAWriteBuildsOnce) {
  setValidSubhavrinName<CharacterSet>(CharacterSet("w"));  // a write before any read
  EXPECT_EQ(validSubhavrinNameOnEachSurface(), "w");

  std::vector<const void*> built(4);
  onThreads(built.size(), [&built](std::size_t i) {
    built[i] = &detail::urlSchemeAllowedSet();
    EXPECT_TRUE(hexadecimal<CharacterSet>().contains(U'f') && asciiAlphabet<CharacterSet>().contains(U'z') &&
                urlSchemeAllowed<CharacterSet>().contains(U'+'));
  });
  for (const void* set : built) EXPECT_EQ(set, built.front());

  setValidSubhavrinName<CharacterSet>(CharacterSet(std::string(kLetters) + std::string(kDigits) + "_"));
}

TEST(CharacterSets, HaveTheMembersThatTheirNamesSay) {
  const std::string letters(kLetters), digits(kDigits);
  EXPECT_EQ(givenBy<"hexadecimalCharacterSet">(hexadecimal<CharacterSet>(), hexadecimal<NSCharacterSet>()),
            sorted("0123456789abcdefABCDEF"));
  EXPECT_EQ(givenBy<"asciiAlphabetCharacterSet">(asciiAlphabet<CharacterSet>(), asciiAlphabet<NSCharacterSet>()),
            sorted(letters));
  EXPECT_EQ(urlSchemeAllowedOnEachSurface(), sorted(letters + digits + "+-."));
  EXPECT_EQ(validSubhavrinNameOnEachSurface(), sorted(letters + digits + "_"));
}

TEST(CharacterSets, ReplacingOneChangesEachSurfaceAndNoOtherSet) {
  const CharacterSet before = urlSchemeAllowed<CharacterSet>();
  setUrlSchemeAllowed<CharacterSet>(CharacterSet("a"));
  EXPECT_EQ(urlSchemeAllowedOnEachSurface(), "a");
  changeUrlSchemeAllowed<CharacterSet>([](CharacterSet& set) { set.insert(U'b'); });
  EXPECT_EQ(urlSchemeAllowedOnEachSurface(), "ab");
  EXPECT_EQ(validSubhavrinNameOnEachSurface().size(), 63u);
  EXPECT_EQ(membersOf(before).size(), 65u) << "what was read before stays";
  setUrlSchemeAllowed<CharacterSet>(before);

  changeValidSubhavrinName<CharacterSet>([](CharacterSet& set) { set = set.inverted(); });
  EXPECT_FALSE(validSubhavrinName<CharacterSet>().contains(U'_'));
  EXPECT_TRUE(urlSchemeAllowed<CharacterSet>() == before);
  changeValidSubhavrinName<CharacterSet>([](CharacterSet& set) { set = set.inverted(); });
}

}  // namespace
