// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/platform/observing/key_value_coding.h>
#include <HavrinFoundation/platform/unicode/unicode.h>
#include <HavrinFoundation/text/string_helpers.h>
#include <HavrinFoundation/text/string_helpers_messages.h>

namespace {

using namespace std::string_view_literals;
using namespace havrin;

// Text that is known only when it is asked for.
class LateString : public Object<LateString, NSString> {
 public:
  explicit LateString(std::u16string units = {}) : units_(std::move(units)) {}
  std::uint64_t length() const override { return units_.size(); }
  char16_t characterAtIndex(std::uint64_t index) const override { return units_[index]; }

 private:
  std::u16string units_;
};

// Answers that it contains nothing, and counts how often it is asked.
class Secretive : public Object<Secretive, NSString> {
 public:
  int asked = 0;
  bool containsNothing(NSCharacterSet* set) {
    ++asked;
    EXPECT_TRUE(set->characterSet() == CharacterSet("x").inverted()) << "the complement";
    return false;
  }
  using Members = List<Method<"containsAnyCharactersInSet:", &Secretive::containsNothing>>;
};

TEST(StringHelpers, RangesCoverTheWholeText) {
  const struct {
    std::string_view text;
    std::uint64_t units;
    const char* why;
  } rows[] = {
      {"", 0, "nothing"},
      {"abc", 3, "ASCII"},
      {"a\0b"sv, 3, "U+0000 counts"},
      {"é", 1, "two bytes, one unit"},
      {"👍", 2, "a surrogate pair"},
      {"👨‍👩‍👧‍👦", 11, "a family with joiners"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(nsrange(row.text), (NSRange{0, row.units}));
    EXPECT_EQ(entireRange(row.text), (Range<std::size_t>{0, row.text.size()}));
    for (const Strong<NSString>& string : {makeString(row.text), Strong<NSString>(make<LateString>(utf16(row.text)))}) {
      EXPECT_EQ(entireRange(*string), (NSRange{0, row.units}));
      EXPECT_EQ(send<"entireRange">(string), (NSRange{0, row.units}));
    }
  }
}

TEST(StringHelpers, CharactersAreTestedScalarByScalar) {
  const CharacterSet letters = CharacterSet::letters(), digits = CharacterSet::decimalDigits(), none;
  const CharacterSet ascii({U'\0', U'\x7F'}), thumb("👍"), replacement("\uFFFD");
  const struct {
    std::string_view text;
    CharacterSet set;
    bool any, only;
    const char* why;
  } rows[] = {
      {"", letters, false, true, "empty text"},
      {"", none, false, true, "empty text, empty set"},
      {"abc", none, false, false, "the empty set"},
      {"abc", letters, true, true, "only members"},
      {"abc1", letters, true, false, "a last one that is none"},
      {"abc1", digits, true, false, "a last one that is"},
      {"e\u0301", letters, true, true, "a mark is a letter"},
      {"e\u0301", ascii, true, false, "but not in ASCII"},
      {"👍", thumb, true, true, "a pair is one scalar"},
      {"👍", thumb.inverted(), false, false, "nor in the complement"},
      {"\xF0\x9F", replacement, true, true, "an ill-formed part is U+FFFD"},
      {"a\0"sv, letters, true, false, "U+0000 is looked at"},
      {"٣", digits, true, true, "digits of any script"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(containsAnyCharacters(row.text, row.set), row.any);
    EXPECT_EQ(containsOnlyCharacters(row.text, row.set), row.only);
    EXPECT_EQ(containsAnyCharacters(row.text, row.set.inverted()), !row.only);
    const auto set = makeCharacterSet(row.set);
    for (const Strong<NSString>& string : {makeString(row.text), Strong<NSString>(make<LateString>(utf16(row.text)))}) {
      EXPECT_EQ(containsAnyCharacters(*string, row.set), row.any);
      EXPECT_EQ(containsOnlyCharacters(*string, row.set), row.only);
      EXPECT_EQ(send<"containsAnyCharactersInSet:">(string, set), row.any);
      EXPECT_EQ(send<"containsOnlyCharactersInSet:">(string, set), row.only);
    }
  }
  const auto half = makeString(u"a\xD83D");
  EXPECT_TRUE(containsAnyCharacters(*half, replacement) && !containsAnyCharacters(*half, thumb)) << "a lone surrogate";
  EXPECT_FALSE(containsOnlyCharacters(*half, letters));
}

TEST(StringHelpers, AnOverrideOfContainsAnyDecidesContainsOnly) {
  const auto string = make<Secretive>();
  const CharacterSet set("x");
  EXPECT_TRUE(containsOnlyCharacters(*string, set));
  EXPECT_TRUE(send<"containsOnlyCharactersInSet:">(string, makeCharacterSet(set)));
  EXPECT_EQ(string->asked, 2);
}

TEST(StringHelpers, MessagesToNullAndWithNullArguments) {
  const Strong<NSString> none, text = makeString("abc");
  EXPECT_EQ(send<"entireRange">(none), NSRange());
  const Strong<NSObject> byKey = send<"valueForKey:">(makeString("\U0001F44Da"), makeString("entireRange"));
  EXPECT_TRUE(byKey->isEqual(NSValue::valueWithRange({0, 3})));
  EXPECT_FALSE(byKey->isEqual(NSValue::valueWithRange({1, 3})));
  EXPECT_EQ(utf8(*byKey->description()), "NSRange: {0, 3}");
  EXPECT_FALSE(send<"containsAnyCharactersInSet:">(none, makeCharacterSet(CharacterSet())));
  EXPECT_FALSE(send<"containsOnlyCharactersInSet:">(none, makeCharacterSet(CharacterSet())));
  EXPECT_THROW(send<"containsAnyCharactersInSet:">(text, nullptr), NSException);
  EXPECT_THROW(send<"containsOnlyCharactersInSet:">(text, nullptr), NSException);
  const auto repeated =
      send<"stringByRepeatingString:times:joinedBy:">(classOf<NSString>(), nullptr, 3, makeString("-"));
  EXPECT_EQ(utf8(*repeated), "--") << "a null string is the empty one";
}

TEST(StringHelpers, RepetitionJoinsNeighboursOnly) {
  const struct {
    std::string_view text;
    std::int64_t times;
    std::optional<std::string_view> joinedBy;
    std::string_view result;
    const char* why;
  } rows[] = {
      {"ab", 3, ", ", "ab, ab, ab", "a separator between neighbours"},
      {"ab", 3, {}, "ababab", "no separator"},
      {"ab", 0, ", ", "", "no copy"},
      {"ab", -1, ", ", "", "fewer than none"},
      {"", 3, "-", "--", "copies of nothing"},
      {"", 3, {}, "", "nothing of nothing"},
      {"", std::numeric_limits<std::int64_t>::max(), {}, "", "any number of times"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(repeating<NSString>(row.text, row.times, row.joinedBy), row.result);
    const auto sent = send<"stringByRepeatingString:times:joinedBy:">(classOf<NSString>(), makeString(row.text),
                                                                      row.times, orNull(row.joinedBy));
    EXPECT_EQ(utf8(*sent), row.result);
  }
  for (std::int64_t times = 1; times < 70; ++times) {
    std::string expected = "abc";
    for (std::int64_t copy = 1; copy < times; ++copy) expected += "-+abc";
    ASSERT_EQ(repeating<NSString>("abc", times, "-+"), expected);
  }
  EXPECT_THROW((void)repeating<NSString>("ab", std::numeric_limits<std::int64_t>::max(), {}), std::length_error);
  EXPECT_THROW((void)send<"stringByRepeatingString:times:joinedBy:">(classOf<NSString>(), makeString("ab"),
                                                                     std::numeric_limits<std::int64_t>::max(), nullptr),
               NSException);
}

}  // namespace
