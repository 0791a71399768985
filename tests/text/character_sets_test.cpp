// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/text/character_sets.h>
#include <HavrinFoundation/text/character_sets_messages.h>

namespace {

using namespace havrin;

constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view kSchemes = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-.";
constexpr std::string_view kNames = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

// One of the sets on each surface.
template <Text Selector>
void expectSet(const CharacterSet& value, const Strong<NSCharacterSet>& object, std::string_view members) {
  SCOPED_TRACE(Selector.view());
  const CharacterSet expected(members);
  EXPECT_TRUE(value == expected);
  EXPECT_TRUE(object->characterSet() == expected);
  EXPECT_TRUE(send<Selector>(classOf<NSCharacterSet>())->characterSet() == expected);
}
void expectSchemes(std::string_view members) {
  expectSet<"h_URLSchemeAllowedCharacterSet">(urlSchemeAllowed<CharacterSet>(), urlSchemeAllowed<NSCharacterSet>(),
                                              members);
}
void expectNames(std::string_view members) {
  expectSet<"validSubhavrinNameCharacterSet">(validSubhavrinName<CharacterSet>(), validSubhavrinName<NSCharacterSet>(),
                                              members);
}

// Runs first: nothing has been read or written before it.
TEST(CharacterSets, FirstUseFromManyThreadsAndByAWriteBuildsOnce) {
  setValidSubhavrinName<CharacterSet>(CharacterSet("w"));  // a write before any read
  expectNames("w");
  std::vector<const void*> built(4);
  onThreads(built.size(), [&built](std::size_t i) {
    built[i] = &detail::urlSchemeAllowedSet();
    EXPECT_TRUE(hexadecimal<CharacterSet>().contains(U'f') && asciiAlphabet<CharacterSet>().contains(U'z') &&
                urlSchemeAllowed<CharacterSet>().contains(U'+'));
  });
  for (const void* set : built) EXPECT_EQ(set, built.front());
  setValidSubhavrinName<CharacterSet>(CharacterSet(kNames));
}

TEST(CharacterSets, HaveTheMembersThatTheirNamesSay) {
  expectSet<"hexadecimalCharacterSet">(hexadecimal<CharacterSet>(), hexadecimal<NSCharacterSet>(),
                                       "0123456789abcdefABCDEF");
  expectSet<"asciiAlphabetCharacterSet">(asciiAlphabet<CharacterSet>(), asciiAlphabet<NSCharacterSet>(), kLetters);
  expectSchemes(kSchemes);
  expectNames(kNames);
}

TEST(CharacterSets, ReplacingOneChangesEachSurfaceAndNoOtherSet) {
  const CharacterSet before = urlSchemeAllowed<CharacterSet>();
  setUrlSchemeAllowed<CharacterSet>(CharacterSet("a"));
  expectSchemes("a");
  changeUrlSchemeAllowed<CharacterSet>([](CharacterSet& set) { set.insert(U'b'); });
  expectSchemes("ab");
  expectNames(kNames);
  EXPECT_TRUE(before == CharacterSet(kSchemes)) << "what was read before stays";
  setUrlSchemeAllowed<CharacterSet>(before);

  changeValidSubhavrinName<CharacterSet>([](CharacterSet& set) { set = CharacterSet("n"); });
  expectNames("n");
  expectSchemes(kSchemes);
  setValidSubhavrinName<CharacterSet>(CharacterSet(kNames));
}

}  // namespace
