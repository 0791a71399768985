// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

namespace {

using namespace std::string_view_literals;
using havrin::Scalar;

// ICU's own conversions are the oracle for the rule of ill-formed text.
std::u16string utf16ByIcu(std::string_view text) {
  const auto string = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int>(text.size())));
  return {string.getBuffer(), static_cast<std::size_t>(string.length())};
}

std::string utf8ByIcu(std::u16string_view text) {
  std::string result;
  return icu::UnicodeString(false, text.data(), static_cast<int>(text.size())).toUTF8String(result);
}

bool isWellFormedByIcu(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  int length = 0;
  u_strFromUTF8(nullptr, 0, &length, text.data(), static_cast<int>(text.size()), &error);
  return error != U_INVALID_CHAR_FOUND;
}

std::vector<std::size_t> characterLengthsByIcu(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  std::unique_ptr<icu::BreakIterator> breaks(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
  UText source = UTEXT_INITIALIZER;
  utext_openUTF8(&source, text.data(), static_cast<std::int64_t>(text.size()), &error);
  breaks->setText(&source, error);
  std::vector<std::size_t> lengths;
  for (int before = breaks->first(), at = breaks->next(); at != icu::BreakIterator::DONE; at = breaks->next()) {
    lengths.push_back(static_cast<std::size_t>(at - before));
    before = at;
  }
  utext_close(&source);
  EXPECT_TRUE(U_SUCCESS(error));
  return lengths;
}

// A unit at a time, which is how every other operation must see the text.
std::vector<Scalar> scalarsOf(auto text) {
  std::vector<Scalar> scalars;
  for (std::size_t i = 0; i < text.size(); i += scalars.back().length) scalars.push_back(havrin::scalarAt(text, i));
  return scalars;
}

void expectAgreesWithIcu(std::string_view text) {
  const std::u16string expected = utf16ByIcu(text);
  EXPECT_EQ(havrin::utf16(text), expected);
  EXPECT_EQ(havrin::utf16Length(text), expected.size());
  EXPECT_EQ(havrin::isWellFormed(text), isWellFormedByIcu(text));
  EXPECT_EQ(havrin::repaired(text), utf8ByIcu(expected));
  std::u16string appended;
  bool wellFormed = true;
  for (const Scalar& scalar : scalarsOf(text)) {
    havrin::appendScalar(appended, scalar.value);
    wellFormed = wellFormed && scalar.wellFormed;
  }
  EXPECT_EQ(appended, expected);
  EXPECT_EQ(wellFormed, havrin::isWellFormed(text));
}

void expectAgreesWithIcu(std::u16string_view text) {
  const std::string expected = utf8ByIcu(text);
  EXPECT_EQ(havrin::utf8(text), expected);
  EXPECT_EQ(havrin::utf8Length(text), expected.size());
  EXPECT_EQ(havrin::isWellFormed(text), havrin::utf16(expected) == text && text.find(u'\uFFFD') == text.npos);
}

void expectSameCharactersAsIcu(std::string_view text) {
  const auto lengths = characterLengthsByIcu(text);
  EXPECT_EQ(havrin::characterCount(text), lengths.size());
  EXPECT_EQ(havrin::firstCharacterLength(text), lengths.empty() ? 0 : lengths.front());
}

TEST(Unicode, ReplacesEachMaximalIllFormedPart) {
  // Cut short, overlong, a surrogate, above U+10FFFF, and a part that ends where the next sequence begins.
  EXPECT_EQ(havrin::utf16("\xF0\x9F\x91z\xC0\x80z\xED\xA0\xBDz\xF4\x90\x80\x80z\xE2\x82\xE2\x82\xAC"),
            u"\uFFFDz\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFD\uFFFDz\uFFFD\u20AC");
  for (const std::string_view text : {"a\0b"sv, "\xEF\xBF\xBF\xF4\x8F\xBF\xBF"sv, "\x80\xBF"sv, "\xEF\xBF\xBD"sv}) {
    expectAgreesWithIcu(text);
  }
  EXPECT_EQ(havrin::utf8(u"\xDC4D\xD83D\n"), "\uFFFD\uFFFD\n") << "lone surrogates";
  std::string appended;
  for (const char32_t scalar : {0xD800U, 0xDFFFU, 0x110000U}) havrin::appendScalar(appended, scalar);
  EXPECT_EQ(appended, "\uFFFD\uFFFD\uFFFD");
}

TEST(Unicode, ConvertsEveryScalarBothWays) {
  for (char32_t scalar = 0; scalar <= 0x10FFFF; ++scalar) {
    if (scalar == 0xD800) scalar = 0xE000;
    std::string narrow;
    std::u16string wide;
    havrin::appendScalar(narrow, scalar);
    havrin::appendScalar(wide, scalar);
    ASSERT_EQ(havrin::scalarAt(std::string_view(narrow), 0), (Scalar{scalar, narrow.size(), true}));
    ASSERT_EQ(havrin::scalarAt(std::u16string_view(wide), 0), (Scalar{scalar, wide.size(), true}));
    ASSERT_EQ(havrin::utf8(wide), narrow);
  }
}

TEST(Unicode, EndsAsciiPrefixesAtTheFirstOtherUnit) {
  for (std::size_t size = 0; size < 80; ++size) {
    std::string narrow(size, 'a');
    std::u16string wide(size, u'a');
    EXPECT_TRUE(havrin::isAscii(narrow) && havrin::isAscii(wide));
    for (std::size_t at = 0; at < size; ++at) {
      narrow[at] = '\x80';
      wide[at] = at % 2 == 0 ? u'\u0080' : u'\u6100';
      EXPECT_EQ(havrin::asciiPrefixLength(narrow), at);
      EXPECT_EQ(havrin::asciiPrefixLength(wide), at);
      narrow[at] = '\x7F';
      wide[at] = u'\x7F';
    }
  }
}

TEST(Unicode, ReadsRandomBytesAndUnitsAsIcuDoes) {
  auto generator = seededGenerator();
  // Mostly bytes and units from around the edges of the table of well-formed sequences.
  constexpr unsigned char kBytes[] = {'a',  'b',  0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC1,
                                      0xC2, 0xDF, 0xE0, 0xE1, 0xED, 0xEE, 0xF0, 0xF1, 0xF4, 0xF5};
  constexpr char16_t kUnits[] = {'a', 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFF};
  for (int round = 0; round < 20000; ++round) {
    std::string narrow(generator() % 24, '\0');
    for (char& c : narrow) c = static_cast<char>(kBytes[generator() % std::size(kBytes)]);
    expectAgreesWithIcu(std::string_view(narrow));
    std::u16string wide(generator() % 24, u'\0');
    for (char16_t& c : wide) c = kUnits[generator() % std::size(kUnits)];
    expectAgreesWithIcu(std::u16string_view(wide));
    if (HasFailure()) FAIL() << "round " << round;
  }
}

TEST(Unicode, BreaksCharactersWhereIcuDoes) {
  // One scalar of each kind that the rules distinguish, then all sequences of four of them.
  constexpr char32_t kKinds[] = {'a',    '\r',   '\n',   0x200B, 0x0301, 0x200D,  0x0903,  0x0600,  0x1100,
                                 0x1161, 0x11A8, 0xAC00, 0xAC01, 0x00A9, 0x1F469, 0x1F3FD, 0x1F1E6, 0xFFFD};
  constexpr std::size_t kCount = std::size(kKinds);
  for (std::size_t i = 0; i < kCount * kCount * kCount * kCount; ++i) {
    std::string text;
    for (std::size_t rest = i, place = 0; place < 4; ++place, rest /= kCount)
      havrin::appendScalar(text, kKinds[rest % kCount]);
    expectSameCharactersAsIcu(text);
    if (HasFailure()) FAIL() << "sequence " << i;
  }
  EXPECT_EQ(havrin::characterCount("12345678\r\n👨‍👩‍👧‍👦🇫🇷🇩🇪"), 12u)
      << "CR LF, a family and two flags";
  // Longer chains, and every scalar after a letter and before a mark.
  auto generator = seededGenerator();
  for (int round = 0; round < 5000; ++round) {
    std::string text;
    for (int place = 0; place < 12; ++place) havrin::appendScalar(text, kKinds[generator() % kCount]);
    expectSameCharactersAsIcu(text);
  }
  std::string everything;
  for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
    if (u_charType(static_cast<int>(scalar)) == U_UNASSIGNED) continue;
    havrin::appendScalar(everything, 'a');
    havrin::appendScalar(everything, scalar);
    havrin::appendScalar(everything, 0x0301);
  }
  expectSameCharactersAsIcu(everything);
}

}  // namespace
