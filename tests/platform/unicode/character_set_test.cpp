// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/base/wide_instructions.h>
#include <HavrinFoundation/platform/unicode/character_set.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <unicode/uniset.h>

#include <set>

namespace {

using havrin::CharacterSet;
using havrin::ClosedRange;
using Found = std::optional<havrin::Range<std::size_t>>;

bool isScalar(char32_t value) { return value < 0xD800 || (value > 0xDFFF && value < 0x110000); }

// The plain loops first, then, where the processor has them, the wide ones.
void withEveryBody(auto test) {
  using havrin::detail::WideInstructions;
  auto& found = havrin::detail::wideInstructions;
  found = WideInstructions::absent;
  {
    SCOPED_TRACE("plain");
    test();
  }
  found = WideInstructions::unknown;
  SCOPED_TRACE("as the processor allows");
  test();
}

// A search as its contract says it, one scalar after the other.
template <class Text>
Found searchedSlowly(Text text, const CharacterSet& set, bool member) {
  for (std::size_t i = 0; i < text.size();) {
    const auto scalar = havrin::scalarAt(text, i);
    if (set.contains(scalar.value) == member) return havrin::Range{i, i + scalar.length};
    i += scalar.length;
  }
  return std::nullopt;
}

auto endOf(auto text) { return havrin::Range{text.size(), text.size()}; }

template <class Text>
void expectFoundAsSlowly(Text text, const CharacterSet& set) {
  EXPECT_EQ(rangeOfCharacter(text, set), searchedSlowly(text, set, true));
  EXPECT_EQ(set.firstOtherIn(text), searchedSlowly(text, set, false).value_or(endOf(text)).lowerBound);
  EXPECT_EQ(rangeOfCharacter(text, set.inverted()), searchedSlowly(text, set, false));
}

TEST(CharacterSet, CategorySetsHoldWhatIcuSaysOfEveryCodePoint) {
  for (const auto& [set, pattern] : Rows<CharacterSet, const char16_t*>{
           {CharacterSet::letters(), u"[[:L:][:M:]]"},
           {CharacterSet::decimalDigits(), u"[:Nd:]"},
           {CharacterSet::alphanumerics(), u"[[:L:][:M:][:N:]]"},
           {CharacterSet::uppercaseLetters(), u"[[:Lu:][:Lt:]]"},
           {CharacterSet::lowercaseLetters(), u"[:Ll:]"},
           {CharacterSet::whitespaces(), u"[[:Zs:]\\u0009]"},
           {CharacterSet::newlines(), u"[\\u000A-\\u000D\\u0085\\u2028\\u2029]"},
           {CharacterSet::whitespacesAndNewlines(), u"[[:Z:]\\u0009-\\u000D\\u0085]"},
       }) {
    UErrorCode error = U_ZERO_ERROR;
    const icu::UnicodeSet expected(pattern, error);
    ASSERT_TRUE(U_SUCCESS(error));
    SCOPED_TRACE(testing::PrintToString(std::u16string(pattern)));
    const CharacterSet inverted = set.inverted();
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
      const bool member = isScalar(scalar) && expected.contains(static_cast<UChar32>(scalar));
      ASSERT_EQ(set.contains(scalar), member) << std::hex << static_cast<std::uint32_t>(scalar);
      ASSERT_EQ(inverted.contains(scalar), isScalar(scalar) && !member)
          << std::hex << static_cast<std::uint32_t>(scalar);
    }
  }
}

TEST(CharacterSet, ChangesAsAVectorOfBooleansDoes) {
  auto generator = seededGenerator();
  // Bounds that cut pages and words at their edges, and any others.
  const auto bound = [&generator]() -> char32_t {
    constexpr char32_t kEdges[] = {0,      0x3F,   0x40,   0x7F,   0x80,     0xFF,    0x100,
                                   0xD7FF, 0xD800, 0xDFFF, 0xE000, 0x10FFFF, 0x110000};
    return generator() % 2 == 0 ? kEdges[generator() % std::size(kEdges)] : static_cast<char32_t>(generator() % 0x400);
  };
  const auto expectMembers = [](const CharacterSet& set, const std::vector<bool>& expected) {
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
      ASSERT_EQ(set.contains(scalar), isScalar(scalar) && expected[scalar]);
    }
  };
  CharacterSet set;
  std::vector<bool> expected;
  for (int step = 0; step < 120; ++step) {
    if (step % 6 == 0) {
      set = CharacterSet();
      expected.assign(0x110000, false);
    }
    const CharacterSet before = set;
    const std::vector<bool> expectedBefore = expected;
    const auto [lower, upper] = std::minmax({bound(), bound()});
    const bool insert = generator() % 3 != 0;
    insert ? set.insert({lower, upper}) : set.remove({lower, upper});
    for (char32_t scalar = lower; scalar <= upper && scalar < 0x110000; ++scalar) expected[scalar] = insert;
    if (generator() % 3 == 0) {
      set = set.inverted();
      expected.flip();
    }
    if (generator() % 4 == 0) {
      set.formUnion(before);
      for (std::size_t i = 0; i < expected.size(); ++i) expected[i] = expected[i] || expectedBefore[i];
    }
    expectMembers(set, expected);
    expectMembers(before, expectedBefore);
    CharacterSet rebuilt;
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
      if (expected[scalar]) rebuilt.insert(scalar);
    }
    EXPECT_TRUE(rebuilt == set && rebuilt.inverted() == set.inverted());
    EXPECT_FALSE(rebuilt == set.inverted());
    set.contains(U'k') ? rebuilt.remove(U'k') : rebuilt.insert(U'k');
    EXPECT_FALSE(rebuilt == set);
  }
}

TEST(CharacterSet, SearchesDistinguishAllAsciiMembers) {
  withEveryBody([] {
    for (char32_t member = 0; member < 0x80; ++member) {
      CharacterSet set;
      set.insert(member);
      for (char32_t scalar = 0; scalar < 0x80; ++scalar) {
        const std::string text(33, static_cast<char>(scalar));
        ASSERT_EQ(rangeOfCharacter(text, set).has_value(), scalar == member);
        ASSERT_EQ(set.firstOtherIn(text), scalar == member ? text.size() : 0);
      }
    }
  });
}

TEST(CharacterSet, RandomTextIsSearchedAsScalarByScalar) {
  auto generator = seededGenerator();
  CharacterSet common({0x20, 0x7E});
  common.insert({0x400, 0x4FF});
  common.insert({0x1F300, 0x1F5FF});
  const CharacterSet sets[] = {common, CharacterSet::letters(), common.inverted(), CharacterSet("~\u04FF")};
  constexpr std::string_view kPieces[] = {
      "plain text without any hits in it", " ", "слово", "👍", "\xF0\x9F", "汉字", "~", "é"};
  withEveryBody([&] {
    for (int round = 0; round < 4000; ++round) {
      std::string text;
      for (auto pieces = generator() % 12; pieces > 0; --pieces) text += kPieces[generator() % std::size(kPieces)];
      std::u16string wide = havrin::utf16(text);
      if (!wide.empty() && generator() % 2 == 0) wide[generator() % wide.size()] = 0xD83D;
      for (const CharacterSet& set : sets) {
        expectFoundAsSlowly(std::string_view(text), set);
        expectFoundAsSlowly(std::u16string_view(wide), set);
      }
      if (HasFailure()) FAIL() << text;
    }
  });
}

TEST(CharacterSet, CopiesAreMadeAndChangedOnManyThreads) {
  const CharacterSet shared("abc");
  onThreads(4, [&shared](std::size_t thread) {
    EXPECT_TRUE(CharacterSet::letters().contains(U'x'));
    const auto own = static_cast<char32_t>('0' + thread);
    for (int round = 0; round < 1000; ++round) {
      CharacterSet mine = shared;
      mine.insert(own);
      CharacterSet moved = std::move(mine);
      mine = moved;
      moved.insert(U'z');
      EXPECT_TRUE(mine.contains(own) && !mine.contains(U'z') && moved.contains(U'a'));
    }
  });
  EXPECT_TRUE(shared == CharacterSet("cba"));
}

}  // namespace
