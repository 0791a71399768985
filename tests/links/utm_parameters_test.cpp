// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/links/utm_parameters.h>

namespace {

using namespace havrin;

// A value type without equality of its own.
static_assert(!std::equality_comparable<UTMParameters>);

auto fields(const UTMParameters& p) { return std::tie(p.campaign, p.content, p.medium, p.name, p.source, p.term); }

TEST(UtmParameters, ReadsTheLastItemOfEachKey) {
  for (const auto& [url, parameters, why] : Rows<std::string_view, std::optional<UTMParameters>, std::string_view>{
           {"https://h/p?utm_campaign=1&utm_content=2&utm_medium=3&utm_name=4&utm_source=5&utm_term=6",
            UTMParameters{"1", "2", "3", "4", "5", "6"}, "all six"},
           {"?utm_source=a&x&utm_source=b", UTMParameters{.source = "b"}, "the last one decides"},
           {"?utm_source=a&utm_source", std::nullopt, "a bare key sets back to absent"},
           {"?utm_source&utm_source=a", UTMParameters{.source = "a"}, "a bare key clears what stood before it only"},
           {"?utm_source=a&utm_source=", UTMParameters{.source = ""}, "the empty text is present"},
           {"?utm_sources=a&tm_source=a", std::nullopt, "keys are whole"},
           {"?utm%5Fsource=a%20b+c", UTMParameters{.source = "a b+c"}, "names and values are decoded"},
           {"?utm_source=%FF", UTMParameters{.source = "\uFFFD"}, "bytes that are no text"},
       }) {
    SCOPED_TRACE(why);
    const auto read = fromUrl<UTMParameters>(URL::fromString(url));
    ASSERT_EQ(read.has_value(), parameters.has_value());
    if (read) {
      EXPECT_EQ(fields(*read), fields(*parameters));
    }
  }
  EXPECT_FALSE(fromUrl<UTMParameters>(std::nullopt)) << "no link";
  EXPECT_FALSE(fromUrl<UTMParameters>(URL::fromUncheckedText("https://2001:db8::1:433?utm_source=a"))) << "no parts";
  const URL base = *URL::fromString("https://ex.com/dir/page?utm_source=x");
  EXPECT_FALSE(fromUrl<UTMParameters>(URL::fromString("", base))) << "the base is not read";
  const UTMParameters tagged{.source = "a"};
  EXPECT_TRUE(tagged.source == "a" && tagged.source != std::string("b") && tagged.term == std::nullopt);
}

TEST(UtmParameters, AppendsToTheQuery) {
  const UTMParameters all{"1", "2", "3", "4", "5", "6"};
  for (const auto& [before, parameters, result, why] :
       Rows<std::string_view, UTMParameters, std::string_view, std::string_view>{
           {"https://h", all, "https://h?utm_campaign=1&utm_content=2&utm_medium=3&utm_name=4&utm_source=5&utm_term=6",
            "the fixed order"},
           {"https://h/p?a=1&utm_campaign=x", UTMParameters{.campaign = "c1", .term = "t1"},
            "https://h/p?a=1&utm_campaign=x&utm_campaign=c1&utm_term=t1", "older parameters keep their places"},
           {"https://h/p?u=a%2Bb&%c3%a9&#f", UTMParameters{.name = "n"}, "https://h/p?u=a%2Bb&%c3%a9&&utm_name=n#f",
            "what stands keeps its text"},
           {"https://h/p", UTMParameters{.source = ""}, "https://h/p?utm_source=", "the empty text is written"},
           {"https://h/p", UTMParameters{.source = "a b&c+d"}, "https://h/p?utm_source=a%20b%26c%2Bd",
            "values are encoded"},
           {"https://h/p#f", {}, "https://h/p?#f", "nothing to write"},
           {"https://h/p?", UTMParameters{.source = "a"}, "https://h/p?utm_source=a", "an empty query"},
           {"p?a=1", UTMParameters{.source = "x"}, "p?a=1&utm_source=x", "a relative link without a base"},
       }) {
    SCOPED_TRACE(why);
    URL url = *URL::fromString(before);
    EXPECT_EQ(adding(url, parameters), URL::fromString(result));
    EXPECT_EQ(url.relativeString(), before) << "the receiver is not changed";
    add(url, parameters);
    EXPECT_EQ(url.relativeString(), result);
  }
}

TEST(UtmParameters, WritesAbsoluteLinksAndLeavesThoseWithoutParts) {
  const URL base = *URL::fromString("https://ex.com/dir/page?utm_source=x");
  URL url = *URL::fromString("p?a=1", base);
  EXPECT_EQ(adding(url, {.term = "t"}), URL::fromString("https://ex.com/dir/p?a=1&utm_term=t"));
  EXPECT_EQ(adding(*URL::fromString("", base), {.term = "t"}),
            URL::fromString("https://ex.com/dir/page?utm_source=x&utm_term=t"))
      << "the query of the base is the query of a link that has none";
  add(url, {});
  EXPECT_EQ(url, *URL::fromString("https://ex.com/dir/p?a=1"));
  URL broken = URL::fromUncheckedText("https://2001:db8::1:433");
  EXPECT_FALSE(adding(broken, {.source = "a"}));
  add(broken, {.source = "a"});
  EXPECT_EQ(broken, URL::fromUncheckedText("https://2001:db8::1:433"));
}

}  // namespace
