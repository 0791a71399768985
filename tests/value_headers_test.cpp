// SPDX-License-Identifier: Apache-2.0
#include "testing.h"
#include <HavrinFoundation/formatting.h>
#include <HavrinFoundation/keys.h>
#include <HavrinFoundation/object_keys.h>
#include <HavrinFoundation/object_printing.h>
#include <HavrinFoundation/platform/foundation/number.h>

#include <compare>
#include <iomanip>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

using namespace havrin;

namespace {

URL link(std::string_view text) { return *URL::fromString(text); }

// One value in both forms: what operator<< writes is what {fmt} writes.
template <class Type>
std::string bothForms(const Type& value) {
  std::ostringstream out;
  out << value;
  EXPECT_EQ(fmt::format("{}", value), out.str());
  EXPECT_EQ(fmt::format("{:*>80}", value), (std::ostringstream() << std::setfill('*') << std::setw(80) << value).str());
  return out.str();
}

TEST(Printing, WritesAReadableTextForStreamsAndFmt) {
  const auto uuid = *UUID::fromString("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
  const Calendar hebrew(CalendarIdentifier::hebrew, *TimeZone::named("Asia/Jerusalem"));
  for (const auto& [got, expected] : Rows<std::string, std::string>{
           {bothForms(uuid), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F"},
           {bothForms(*URL::fromString("../d?a=1", link("https://h/a/b/c"))), "https://h/a/d?a=1"},
           {bothForms(URLQueryItem("n m", "v&")), "n%20m=v%26"},
           {bothForms(NSRange{7, kNotFound}), "{7, 9223372036854775807}"},
           {bothForms(Date::fromTimeIntervalSince1970(1'709'649'000.9)), "2024-03-05 14:30:00 +0000"},
           {bothForms(Date::fromTimeIntervalSince1970(kNotANumber)), ""},
           {bothForms(hebrew), "hebrew in Asia/Jerusalem"},
           {bothForms(Locale("fr_FR.UTF-8")), "fr_FR"},
           {bothForms(DateComponents{1, {}, {}, 3, {}, {}, -5, 7}), "{era 1, day 3, second -5, weekday 7}"},
           {bothForms(DateComponents()), "{}"},
           {bothForms(CGColor(CGColorSpace::extendedSRGB(), {0.1, 0, 1e-9, 1})), "extendedSRGB(0.1, 0, 1e-09, 1)"},
           {bothForms(CGColor()), "no colour space"},
           {bothForms(Strong<NSNumber>()), "null"},
           {bothForms(makeNumber(2.5)), "2.5"},
           {bothForms(*makeString("Oslo")), "Oslo"},
           {bothForms(Class()), "null"},
           {bothForms(classOf<NSString>()), "NSString"},
           {bothForms(Selector(selector<"setTitle:">)), "setTitle:"},
       })
    EXPECT_EQ(got, expected);
}

TEST(Keys, ValuesThatAreEqualAreOneKey) {
  // Written in two ways, equal by value: one key. The third differs in one field only.
  const auto keys = [](const auto& first, const auto& same, const auto& other) {
    return std::unordered_set{first, same, other}.size();
  };
  const auto base = link("https://h/");
  EXPECT_EQ(keys(*URL::fromString("a", base), *URL::fromString("a", base), link("https://h/a")), 2);
  EXPECT_EQ(
      keys(URLQueryItem("a", "b"), URLComponents::fromUrl(link("?%61=%62"), BaseURL::ignored)->queryItems()->front(),
           URLQueryItem("a", std::nullopt)),
      2);
  EXPECT_EQ(keys(CGColor(CGColorSpace::lab(), {0.0, 1}), CGColor(CGColorSpace::lab(), {-0.0, 1}), CGColor()), 2);
  EXPECT_EQ(keys(DateComponents{1, 2, {}, {}, {}, {}, {}, {}}, DateComponents{1, 2, {}, {}, {}, {}, {}, {}},
                 DateComponents{2, 1, {}, {}, {}, {}, {}, {}}),
            2);
  EXPECT_EQ(keys(Range<int>(1, 2), Range<int>(1, 2), Range<int>(1, 3)), 2);
  EXPECT_EQ(keys(Class(classOf<NSString>()), Class(classOf<NSString>()), Class()), 2);
  EXPECT_EQ(keys(Selector(selector<"a">), Selector::named("a"), Selector()), 2);
}

TEST(Keys, NeighbouringRangesHaveDifferentHashes) {
  std::unordered_set<std::size_t> hashes;
  for (std::uint64_t location = 0; location < 100; ++location) {
    for (std::uint64_t length = 0; length < 100; ++length) hashes.insert(std::hash<NSRange>()({location, length}));
  }
  EXPECT_EQ(hashes.size(), 10'000);
}

TEST(Keys, OrderByWhatComesFirst) {
  EXPECT_LT((MonthAndDay{2, 29}), (MonthAndDay{3, 1}));
  EXPECT_GT((MonthAndDay{2, 29}), (MonthAndDay{2, 28}));
  EXPECT_LT((NSRange{1, 9}), (NSRange{2, 0}));
  EXPECT_LT((NSRange{1, 8}), (NSRange{1, 9}));
  EXPECT_LT(UUID(), *UUID::fromString("80000000-0000-0000-0000-000000000000"));
  EXPECT_LT(Selector(), Selector(selector<"a">));
}

TEST(Keys, ObjectsAreFoundByValueWhereAsked) {
  std::unordered_map<Strong<NSString>, int, ObjectHash, ObjectEqual> plays{{makeString("Oslo"), 3}, {nullptr, 1}};
  EXPECT_EQ(plays[makeString("Oslo")], 3);
  EXPECT_EQ(plays[nullptr], 1);
  EXPECT_EQ(plays.size(), 2);
}

}  // namespace
