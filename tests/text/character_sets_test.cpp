#include <HavrinFoundation/text/character_sets.h>

#include <gtest/gtest.h>

#include <latch>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

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

// Stands first: nothing has been read or written before it.
TEST(CharacterSets, FirstUseFromManyThreadsAndByAWriteBuildsOnce) {
  setValidSubhavrinName<CharacterSet>(CharacterSet("w"));  // a write before any read
  EXPECT_EQ(membersOf(validSubhavrinName<CharacterSet>()), "w");

  constexpr int kThreads = 4;
  std::latch start(kThreads);
  std::vector<const void*> built(kThreads);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&start, &slot = built[static_cast<std::size_t>(i)]] {
      start.arrive_and_wait();
      slot = &internal::urlSchemeAllowedSet();
      EXPECT_TRUE(hexadecimal<CharacterSet>().contains(U'f') && asciiAlphabet<CharacterSet>().contains(U'z') &&
                  urlSchemeAllowed<CharacterSet>().contains(U'+'));
    });
  }
  for (auto& thread : threads) thread.join();
  for (const void* set : built) EXPECT_EQ(set, built.front());

  setValidSubhavrinName<CharacterSet>(CharacterSet(std::string(kLetters) + std::string(kDigits) + "_"));
}

TEST(CharacterSets, HoldWhatTheirNamesSay) {
  const std::string letters(kLetters), digits(kDigits);
  EXPECT_EQ(membersOf(hexadecimal<CharacterSet>()), sorted("0123456789abcdefABCDEF"));
  EXPECT_EQ(membersOf(asciiAlphabet<CharacterSet>()), sorted(letters));
  EXPECT_EQ(membersOf(urlSchemeAllowed<CharacterSet>()), sorted(letters + digits + "+-."));
  EXPECT_EQ(membersOf(internal::validSubhavrinNameSet()), sorted(letters + digits + "_"));
}

TEST(CharacterSets, AReplacedSetIsSeenEverywhereAndAlone) {
  const CharacterSet before = urlSchemeAllowed<CharacterSet>();
  setUrlSchemeAllowed<CharacterSet>(CharacterSet("a"));
  EXPECT_EQ(membersOf(urlSchemeAllowed<CharacterSet>()), "a");
  changeUrlSchemeAllowed<CharacterSet>([](CharacterSet& set) { set.insert(U'b'); });
  EXPECT_EQ(membersOf(urlSchemeAllowed<CharacterSet>()), "ab");
  EXPECT_EQ(membersOf(asciiAlphabet<CharacterSet>()), sorted(kLetters));
  EXPECT_EQ(membersOf(validSubhavrinName<CharacterSet>()).size(), 63u);
  EXPECT_EQ(membersOf(before).size(), 65u) << "what was read before stays";
  setUrlSchemeAllowed<CharacterSet>(before);

  changeValidSubhavrinName<CharacterSet>([](CharacterSet& set) { set = set.inverted(); });
  EXPECT_FALSE(validSubhavrinName<CharacterSet>().contains(U'_'));
  EXPECT_TRUE(urlSchemeAllowed<CharacterSet>() == before);
  changeValidSubhavrinName<CharacterSet>([](CharacterSet& set) { set = set.inverted(); });
}

}  // namespace
