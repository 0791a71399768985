// SPDX-License-Identifier: Apache-2.0
#include "../../temporary_folder.h"
#include "property_list_samples.h"
#include <HavrinFoundation/platform/documents/property_list.h>

namespace {

using namespace havrin;
using samples::bytesOf;
using samples::repeated;
using List = PropertyList;

std::string xml(std::string_view inside) { return "<plist version=\"1.0\">" + std::string(inside) + "</plist>"; }

TEST(PropertyList, ReadsAndWritesAsAnotherLibraryDoes) {
  for (const auto& [name, value] : samples::all()) {
    SCOPED_TRACE(name);
    const auto written = binaryPropertyList(value);
    EXPECT_TRUE(*readPropertyList(written) == value);
    if (name == "many") continue;
    for (const char* form : {".bplist", ".xml"}) {
      const auto fixture = bytesOf(bytesOfFile(std::filesystem::path(HAVRIN_FIXTURES) / (name + form)));
      const auto read = readPropertyList(fixture);
      ASSERT_TRUE(read) << form << ": " << read.error().detail();
      EXPECT_TRUE(*read == value) << form;
      EXPECT_EQ(binaryPropertyList(*read), written) << form;
      // The objects inside nested collections are numbered in another order there.
      if (form[1] == 'b' && name != "nested" && name != "info") {
        EXPECT_EQ(written, fixture);
      }
    }
  }
}

TEST(PropertyList, DistinguishesKinds) {
  EXPECT_FALSE(List(1) == List(1.0));
  EXPECT_FALSE(List(1) == List(true));
  EXPECT_FALSE(List("a") == List(bytesOf("a")));
  EXPECT_FALSE(samples::dictionary({{"a", List(1)}}) == samples::dictionary({{"b", List(1)}}));
  EXPECT_TRUE(List(7U) == List(std::int64_t{7}));
  EXPECT_EQ(List(UINT64_MAX).integer(), std::nullopt);
  EXPECT_EQ(List(UINT64_MAX).unsignedInteger(), UINT64_MAX);
  EXPECT_EQ(List(-1).unsignedInteger(), std::nullopt);
}

TEST(PropertyList, KeepsOneValueUnderAKey) {
  List::Dictionary entries({{"b", List(1)}, {"a", List(2)}, {"b", List(3)}});
  ASSERT_EQ(entries.entries().size(), 2U);
  EXPECT_TRUE(*entries.find("b") == List(1)) << "the first counts";
  entries.set("b", List(4));
  entries.set("aa", List(5));
  EXPECT_TRUE(entries == List::Dictionary({{"aa", List(5)}, {"a", List(2)}, {"b", List(4)}}));
  EXPECT_EQ(entries.find("c"), nullptr);
}

TEST(PropertyList, ReadsXmlByItsRules) {
  for (const auto& [text, value, why] : Rows<std::string, List, std::string_view>{
           {xml("<integer> +7\n</integer>"), List(7), "blanks and a plus"},
           {xml("<integer>-0x10</integer>"), List(-16), "hexadecimal digits"},
           {xml("<real>-Infinity</real>"), List(-HUGE_VAL), "infinity"},
           {xml("<real> +0.5\n</real>"), List(0.5), "blanks and a plus"},
           {xml("<date> 2024-12-31T23:59:59Z\n</date>"), List(Date::fromTimeIntervalSince1970(1735689599)), "blanks"},
           {xml("<string>a&lt;&#233;<!-- b --><![CDATA[<c>]]></string>"), List("a<\u00E9<c>"), "all that writes text"},
           {xml("<data> YQ = = </data>"), List(bytesOf("a")), "blanks in base64"},
           {xml("<dict><key>a</key><true/><key>a</key><false/></dict>"), samples::dictionary({{"a", List(true)}}),
            "the first of two keys"},
           {xml("<dict><key>CF$UID</key><integer>3</integer></dict>"), List(List::UID{3}), "a UID"},
           {xml("<dict><key>CF$UID</key><integer>-3</integer></dict>"), samples::dictionary({{"CF$UID", List(-3)}}),
            "a UID is not negative"},
           {xml("<dict><key>CF$UID</key><integer>3</integer><key>a</key><true/></dict>"),
            samples::dictionary({{"CF$UID", List(3)}, {"a", List(true)}}), "a UID has no other key"},
           {"<array/>", List(List::Array()), "no element around it"},
           {"\xEF\xBB\xBF<array/>", List(List::Array()), "a byte order mark"},
           {"<?xml version='1.0' encoding='ISO-8859-1'?>\n<!DOCTYPE plist SYSTEM 'x'><!-- \xE9 "
            "--><plist><array>\n</array></plist>",
            List(List::Array()), "another encoding, and a document type that is not followed"},
       })
    samples::expectRead(bytesOf(text), value, why);
}

TEST(PropertyList, ReportsWhatIsWrongInXmlAndInWhichLine) {
  for (const auto& [text, error] : Rows<std::string, std::string_view>{
           {xml("\n<dict><key>a</key></dict>"), "line 2: a key without a value"},
           {xml("<dict><true/></dict>"), "line 1: a value without a key"},
           {xml("<array><key>a</key></array>"), "line 1: a key outside a dictionary"},
           {xml("<true/>\n\n<true/>"), "line 3: more than one value"},
           {xml(""), "line 1: no value"},
           {xml("<set/>"), "line 1: unknown property list element"},
           {xml("<string><true/></string>"), "line 1: an element inside a scalar element"},
           {xml("<array>a</array>"), "line 1: text between elements"},
           {xml("<integer>1.5</integer>"), "line 1: <integer> is not a 64-bit integer"},
           {xml("<integer>18446744073709551616</integer>"), "line 1: <integer> is not a 64-bit integer"},
           {xml("<integer>--1</integer>"), "line 1: <integer> is not a 64-bit integer"},
           {xml("<real>+-1</real>"), "line 1: <real> is not a number"},
           {xml("<date>2023-02-29T00:00:00Z</date>"), "line 1: <date> is not a date in the form 2024-10-01T12:34:56Z"},
           {xml("<date>2024-01-01 00:00:00Z</date>"), "line 1: <date> is not a date in the form 2024-10-01T12:34:56Z"},
           {xml("<data>Y=Q=</data>"), "line 1: <data> is not base64"},
           {xml("<data>YQ==YQ==</data>"), "line 1: <data> is not base64"},
           {xml("<string>\xFF</string>"), "line 1: not well-formed (invalid token)"},
           {"", "line 1: the data is empty"},
           {"<?xml version=\"1.0\"?>", "line 1: no element found"},
           {"<plist>\n<dict>\n<key>a</key>\n", "line 4: an element is not closed"},
           {"<string>a", "line 1: an element is not closed"},
           {"{ a = b; }", "line 1: not well-formed (invalid token)"},
           {"bplist00", "byte 8: the data ends before its trailer"},
           {"<!DOCTYPE plist [\n<!ENTITY a 'aaaa'>]><plist><string>&a;</string></plist>",
            "line 2: entity declarations are not allowed"},
       })
    EXPECT_EQ(samples::errorOf(readPropertyList(bytesOf(text))), error) << text;
}

TEST(PropertyList, BoundsTheNestingOfXml) {
  const auto nested = [](std::size_t depth) {
    return readPropertyList(bytesOf(repeated("<array>", depth) + repeated("</array>", depth)));
  };
  EXPECT_TRUE(nested(List::kDeepestNesting));
  EXPECT_EQ(samples::reasonOf(nested(List::kDeepestNesting + 1)), "nested deeper than 512 levels");
  EXPECT_FALSE(nested(1'000'000));
}

TEST(PropertyList, IsComparedAndReleasedInBoundedStack) {
  const auto nested = [](int innermost) {
    List list(innermost);
    for (int i = 0; i < 100'000; ++i) list = samples::array(1, samples::dictionary({{"a", list}}));
    return list;
  };
  const List deep = nested(1);
  EXPECT_EQ(deep, nested(1));
  EXPECT_NE(deep, nested(2));
}

TEST(PropertyList, SharesPartsAndWritesThemOnce) {
  const List inner = samples::array(std::string(1000, 'x'), 1);
  List doubled = inner;
  for (int i = 0; i < 16; ++i) doubled = samples::array(doubled, doubled);
  const auto bytes = binaryPropertyList(doubled);
  EXPECT_LT(bytes.size(), 1200U);
  const auto small = readPropertyList(binaryPropertyList(samples::array(inner, inner)));
  ASSERT_TRUE(small);
  EXPECT_EQ((*small->array())[0].array(), (*small->array())[1].array());
  List left = inner;
  const List taken = std::move(left);
  EXPECT_EQ(taken.array(), inner.array());
  EXPECT_EQ(binaryPropertyList(left), binaryPropertyList(List(false)));  // NOLINT(bugprone-use-after-move)
  List::Array texts;
  for (int i = 0; i < 200; ++i) texts.emplace_back(std::to_string(i % 100));
  EXPECT_EQ(binaryPropertyList(List(texts)).size(), 735U) << "each of a hundred texts once";
  // 65536 times a thousand bytes are more than a thousand bytes may expand to.
  EXPECT_EQ(samples::reasonOf(readPropertyList(bytes)), "shared objects expand beyond the size limit");
}

}  // namespace
