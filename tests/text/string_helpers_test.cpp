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

// Counts its calls, and goes on to the inherited method.
struct Asked : Object<Asked, LateString> {
  int asked = 0;
  bool containsAny(NSCharacterSet* set) {
    ++asked;
    EXPECT_TRUE(set->characterSet() == CharacterSet("x").inverted());
    return sendSuper<"containsAnyCharactersInSet:">(*this, set);
  }
  using Members = List<Method<"containsAnyCharactersInSet:", &Asked::containsAny>>;
};

TEST(StringHelpers, GivesTheRangeOfTheWholeText) {
  constexpr std::string_view kText = "é\0👍"sv;
  EXPECT_EQ(nsrange(kText), (NSRange{0, 4})) << "UTF-16 units";
  EXPECT_EQ(entireRange(kText), (Range<std::size_t>{0, 7})) << "bytes";
  EXPECT_EQ(send<"entireRange">(makeString(kText)), (NSRange{0, 4}));
  EXPECT_EQ(send<"entireRange">(make<LateString>(utf16(kText))), (NSRange{0, 4}));
  EXPECT_EQ(nsrange(""), NSRange());
  EXPECT_THROW((void)makeString("ab")->characterAtIndex(2), NSException);
}

TEST(StringHelpers, TestsCharactersScalarByScalar) {
  const CharacterSet letters = CharacterSet::letters(), none;
  const CharacterSet ascii({U'\0', U'\x7F'}), thumb("👍"), replacement("\uFFFD");
  for (const auto& [text, members, any, only, why] : Rows<std::string_view, CharacterSet, bool, bool, const char*>{
           {"", letters, false, true, "empty text"},
           {"abc", none, false, false, "the empty set"},
           {"abc", letters, true, true, "only members"},
           {"abc1", letters, true, false, "a last one that is none"},
           {"e\u0301", ascii, true, false, "a mark is tested apart from what it marks"},
           {"👍", thumb, true, true, "a pair is one scalar"},
           {"👍", thumb.inverted(), false, false, "nor in the complement"},
           {"\xF0\x9F", replacement, true, true, "an ill-formed part is U+FFFD"},
           {"a\0"sv, letters, true, false, "U+0000 is looked at"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(containsAnyCharacters(text, members), any);
    EXPECT_EQ(containsOnlyCharacters(text, members), only);
    EXPECT_EQ(containsAnyCharacters(text, members.inverted()), !only);
    const auto set = makeCharacterSet(members);
    for (const Strong<NSString>& string : {makeString(text), Strong<NSString>(make<LateString>(utf16(text)))}) {
      EXPECT_EQ(send<"containsAnyCharactersInSet:">(string, set), any);
      EXPECT_EQ(send<"containsOnlyCharactersInSet:">(string, set), only);
    }
  }
  const auto half = makeString(u"a\xD83D");
  EXPECT_TRUE(containsAnyCharacters(*half, replacement) && !containsAnyCharacters(*half, thumb)) << "a lone surrogate";
  EXPECT_FALSE(containsOnlyCharacters(*half, letters));
}

TEST(StringHelpers, ContainsOnlySendsContainsAnyWithTheComplement) {
  const auto string = make<Asked>();
  const CharacterSet set("x");
  EXPECT_TRUE(containsOnlyCharacters(*string, set));
  EXPECT_TRUE(send<"containsOnlyCharactersInSet:">(string, makeCharacterSet(set)));
  EXPECT_EQ(string->asked, 2);
}

TEST(StringHelpers, AcceptsNullReceiversAndRefusesNullSets) {
  const Strong<NSString> none, text = makeString("abc");
  const Strong<NSObject> byKey = send<"valueForKey:">(makeString("\U0001F44Da"), makeString("entireRange"));
  EXPECT_TRUE(byKey->isEqual(NSValue::valueWithRange({0, 3})) && !byKey->isEqual(NSValue::valueWithRange({1, 3})));
  EXPECT_EQ(utf8(*byKey->description()), "NSRange: {0, 3}");
  EXPECT_FALSE(send<"containsOnlyCharactersInSet:">(none, makeCharacterSet(CharacterSet())));
  EXPECT_THROW(send<"containsAnyCharactersInSet:">(text, nullptr), NSException);
  EXPECT_THROW(send<"containsOnlyCharactersInSet:">(text, nullptr), NSException);
  const auto repeated =
      send<"stringByRepeatingString:times:joinedBy:">(classOf<NSString>(), nullptr, 3, makeString("-"));
  EXPECT_EQ(utf8(*repeated), "--") << "a null string is the empty one";
}

TEST(StringHelpers, RepeatsWithASeparatorBetweenNeighbours) {
  for (const auto& [text, times, joinedBy, result, why] :
       Rows<std::string_view, std::int64_t, std::optional<std::string_view>, std::string_view, const char*>{
           {"ab", 3, ", ", "ab, ab, ab", "a separator between neighbours"},
           {"ab", 3, {}, "ababab", "no separator"},
           {"ab", 0, ", ", "", "no copy"},
           {"ab", -1, ", ", "", "a negative number of copies"},
           {"", 3, "-", "--", "copies of the empty text"},
           {"", std::numeric_limits<std::int64_t>::max(), {}, "", "any number of empty texts"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(repeating<NSString>(text, times, joinedBy), result);
    const auto sent =
        send<"stringByRepeatingString:times:joinedBy:">(classOf<NSString>(), makeString(text), times, orNull(joinedBy));
    EXPECT_EQ(utf8(*sent), result);
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
