// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/attributed_string.h>

using namespace havrin;

namespace {

Strong<NSDictionary> size(int points) { return makeDictionary({{makeString("NSFont"), makeNumber(points)}}); }

// "2:12 1:- 3:9": how long each run is and which size it names.
std::string runsOf(const NSAttributedString& text) {
  std::string runs;
  for (std::uint64_t at = 0; at < text.length();) {
    const auto run = text.attributesAtIndex(at);
    EXPECT_EQ(run.range.location, at);
    const auto value = run.attributes->objectForKey(makeString("NSFont"));
    runs += (runs.empty() ? "" : " ") + std::to_string(run.range.length) + ":";
    runs += value ? utf8(*value->description()) : "-";
    at += run.range.length;
  }
  return runs;
}

// The same attributes for each unit on its own.
class UnitByUnit : public Object<UnitByUnit, NSAttributedString> {
 public:
  Strong<NSString> string() const override { return makeString("abc"); }
  Run attributesAtIndex(std::uint64_t index) const override { return {size(9), {index, 1}}; }
};

TEST(AttributedString, HoldsOneRunOverItsText) {
  const auto text = make<NSAttributedString>(makeString("👍a"), size(9));
  EXPECT_EQ(text->length(), 3u);
  EXPECT_EQ(text->attributesAtIndex(1).range, (NSRange{0, 3}));
  EXPECT_EQ(utf8(*text->description()), "👍a{NSFont = 9}");
  EXPECT_THROW((void)text->attributesAtIndex(3), NSException);
  EXPECT_EQ(runsOf(*make<NSAttributedString>(makeString("ab"))), "2:-");
  const auto empty = make<NSAttributedString>(makeString(""), size(9));
  EXPECT_EQ(empty->length(), 0u);
  EXPECT_THROW((void)empty->attributesAtIndex(0), NSException) << "empty text keeps no attributes";
  EXPECT_THROW((void)make<NSAttributedString>(nullptr), NSException);
  EXPECT_THROW((void)alloc<NSAttributedString>()->initWithString(nullptr), NSException);
}

TEST(AttributedString, TakesTheRunsThatFitItsText) {
  using Run = NSAttributedString::Run;
  const auto nine = size(9), none = makeDictionary({});
  constexpr std::uint64_t kHuge = ~std::uint64_t{0};
  const struct {
    std::string text;
    std::vector<Run> runs;
    std::string expected;
  } rows[] = {
      {"abc", {{nine, {0, 1}}, {none, {1, 2}}}, "1:9 2:-"},
      {"abc", {{nine, {0, 3}}}, "3:9"},
      {"", {}, ""},
      {"abc", {}, "refused"},
      {"abc", {{nine, {0, 2}}}, "refused"},
      {"abc", {{nine, {1, 2}}}, "refused"},
      {"abc", {{nine, {0, 1}}, {none, {2, 1}}}, "refused"},
      {"abc", {{nine, {0, 2}}, {none, {1, 2}}}, "refused"},
      {"abc", {{nine, {0, 2}}, {none, {2, 2}}}, "refused"},
      {"abc", {{nine, {0, 3}}, {none, {3, 0}}}, "refused"},
      {"abc", {{nine, {0, 2}}, {none, {2, kHuge}}}, "refused"},
      {"abc", {{nine, {0, 2}}, {nullptr, {2, 1}}}, "refused"},
      {"", {{nine, {0, 0}}}, "refused"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text + " as " + row.expected);
    const std::span<const Run> runs(row.runs);
    std::string made = "refused";
    const std::string thrown = nameOf([&] { made = runsOf(*make<NSMutableAttributedString>(s(row.text), runs)); });
    EXPECT_EQ(made, row.expected);
    EXPECT_EQ(thrown, row.expected == "refused" ? "NSInvalidArgumentException" : "none");
  }
  EXPECT_THROW((void)make<NSAttributedString>(nullptr, std::span<const Run>()), NSException);
}

TEST(AttributedString, CopiesTextAndAttributes) {
  const auto string = make<NSMutableString>("ab");
  const auto attributes = make<NSMutableDictionary>();
  const auto text = make<NSAttributedString>(string, attributes);
  string->append("c");
  attributes->setObject(makeNumber(1), makeString("NSFont"));
  EXPECT_EQ(utf8(*text->string()), "ab");
  EXPECT_EQ(runsOf(*text), "2:-");

  const Strong<NSMutableAttributedString> changing = cast<NSMutableAttributedString>(text->mutableCopy());
  const Strong<NSObject> copy = changing->copy();
  changing->setAttributes(size(9), {0, 1});
  EXPECT_EQ(runsOf(*changing), "1:9 1:-");
  EXPECT_TRUE(copy->isEqual(text)) << "a copy does not follow";
}

TEST(AttributedString, IsEqualUnitByUnit) {
  const auto text = make<NSAttributedString>(s("abc"), size(9));
  expectEquality(text, {text->mutableCopy(), make<UnitByUnit>()},
                 {make<NSAttributedString>(s("abc"), size(8)), make<NSAttributedString>(s("abc")),
                  make<NSAttributedString>(s("abd"), size(9)), s("abc")});
  EXPECT_EQ(runsOf(*cast<NSAttributedString>(make<UnitByUnit>()->mutableCopy())), "3:9");
  EXPECT_TRUE(make<NSAttributedString>()->isEqual(make<NSAttributedString>(s(""), size(9))));
}

TEST(AttributedString, ChangesKeepEveryUnitsAttributes) {
  auto generator = seededGenerator();
  const auto text = make<NSMutableAttributedString>();
  std::vector<int> expected;  // the size of each unit, 0 for none
  for (int round = 0; round < 300; ++round) {
    const int points = static_cast<int>(generator() % 3);
    const auto attributes = points == 0 ? Strong<NSDictionary>() : size(points);
    if (expected.empty() || generator() % 4 == 0) {
      const std::size_t added = generator() % 3;
      text->appendAttributedString(make<NSAttributedString>(makeString(std::string(added, 'x')), attributes));
      expected.insert(expected.end(), added, points);
    } else {
      const std::size_t from = generator() % (expected.size() + 1), length = generator() % (expected.size() - from + 1);
      text->setAttributes(attributes, {from, length});
      for (std::size_t i = from; i < from + length; ++i) expected[i] = points;
    }
    std::string runs;
    for (std::size_t i = 0, end; i < expected.size(); i = end) {
      for (end = i; end < expected.size() && expected[end] == expected[i];) ++end;
      runs += (runs.empty() ? "" : " ") + std::to_string(end - i) + ":";
      runs += expected[i] == 0 ? "-" : std::to_string(expected[i]);
    }
    ASSERT_EQ(runsOf(*text), runs);
  }
  const std::uint64_t length = text->length();
  text->appendAttributedString(text);
  EXPECT_EQ(text->length(), 2 * length) << "it may be appended to itself";
  EXPECT_THROW(text->setAttributes(nullptr, {2 * length, 1}), NSException);
  EXPECT_THROW(text->appendAttributedString(nullptr), NSException);
}

}  // namespace
