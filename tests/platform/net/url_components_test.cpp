// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/net/url_components.h>

namespace {

using namespace havrin;

using Pair = std::pair<std::string, std::optional<std::string>>;
using Pairs = std::vector<Pair>;

URLComponents componentsOf(std::string_view text) {
  return *URLComponents::fromUrl(URL::fromString(text).value(), BaseURL::ignored);
}

std::optional<Pairs> pairsOf(const URLComponents& components) {
  const auto items = components.queryItems();
  if (!items) return std::nullopt;
  Pairs pairs;
  for (const auto& item : *items) pairs.emplace_back(item.name(), item.value());
  return pairs;
}

TEST(UrlComponents, ReadsQueriesAndWritesBackWhatItRead) {
  for (const auto& [url, items, why] : Rows<std::string_view, std::optional<Pairs>, std::string_view>{
           {"https://h/p", std::nullopt, "no query"},
           {"?a", Pairs{{"a", std::nullopt}}, "a bare key"},
           {"?a=", Pairs{{"a", ""}}, "an empty value"},
           {"?=", Pairs{{"", ""}}, "only the sign"},
           {"?a=b=c", Pairs{{"a", "b=c"}}, "the first sign parts"},
           {"?a=1&", Pairs{{"a", "1"}, {"", std::nullopt}}, "an empty piece at the end"},
           {"?a&&b", Pairs{{"a", std::nullopt}, {"", std::nullopt}, {"b", std::nullopt}}, "an empty piece between"},
           {"?a;b=1;c", Pairs{{"a;b", "1;c"}}, "a semicolon does not part"},
           {"?a+b=c+d%20e", Pairs{{"a+b", "c+d e"}}, "a plus is a plus"},
           {"?a=%00b", Pairs{{"a", std::string("\0b", 2)}}, "an escaped zero"},
           {"?%c3%a9=%F0%9F%91%8D", Pairs{{"\xC3\xA9", "\xF0\x9F\x91\x8D"}}, "UTF-8, either case"},
           {"?a=%F0%9F%91%2e%ED%A0%80", Pairs{{"a", "\uFFFD.\uFFFD\uFFFD\uFFFD"}}, "one sign per ill-formed part"},
           {"mailto:a@b.c?subject=x#f", Pairs{{"subject", "x"}}, "no authority"},
       }) {
    SCOPED_TRACE(why);
    URLComponents components = componentsOf(url);
    EXPECT_EQ(pairsOf(components), items);
    if (!items) continue;
    components.setQueryItems(*components.queryItems());
    EXPECT_EQ(components.url()->relativeString(), url) << "written back";
  }
}

TEST(UrlComponents, EncodesNewItems) {
  for (const auto& [name, value, text, why] :
       Rows<std::string, std::optional<std::string>, std::string_view, std::string_view>{
           {"a", "b", "a=b", "plain"},
           {"a", "", "a=", "an empty value"},
           {"a b", "a+b;c", "a%20b=a%2Bb%3Bc", "what servers read in two ways"},
           {"1&2=3", "4=5", "1%262%3D3=4%3D5", "signs of the query itself"},
           {"100%", "%41", "100%25=%2541", "percent signs"},
           {"https://x/y?z", "-._~!$'()*,:@/?", "https://x/y?z=-._~!$'()*,:@/?", "characters that need no escape"},
           {"\"<>[\\]^`{|}\x7F", std::string("\0\n", 2), "%22%3C%3E%5B%5C%5D%5E%60%7B%7C%7D%7F=%00%0A",
            "that need one"},
       }) {
    SCOPED_TRACE(why);
    const URLQueryItem item(name, value);
    EXPECT_EQ(item.text(), text);
    EXPECT_EQ(item.name(), name);
    EXPECT_EQ(item.value(), value);

    URLComponents set = componentsOf("https://h/p?old#f");
    set.setQueryItems({&item, 1});
    EXPECT_EQ(set.url()->relativeString(), "https://h/p?" + item.text() + "#f");
    URLComponents appended = componentsOf("https://h/p?%61#f");
    appended.appendQueryItem(name, value);
    EXPECT_EQ(appended.url()->relativeString(), "https://h/p?%61&" + item.text() + "#f");
  }
  EXPECT_EQ(URLQueryItem("\xFF", "a\xE2\x82").text(), "%EF%BF%BD=a%EF%BF%BD") << "ill-formed text is repaired";
}

TEST(UrlComponents, WritesListsOfEveryLength) {
  for (const auto& [url, empty, appended, removed, why] :
       Rows<std::string_view, std::string_view, std::string_view, std::string_view, std::string_view>{
           {"https://h/p", "https://h/p?", "https://h/p?k=v", "https://h/p", "no query"},
           {"https://h/p#f", "https://h/p?#f", "https://h/p?k=v#f", "https://h/p#f", "a fragment"},
           {"https://h/p?", "https://h/p?", "https://h/p?k=v", "https://h/p", "an empty query"},
           {"https://h?a", "https://h?", "https://h?a&k=v", "https://h", "no path"},
           {"?a=1&#f?b", "?#f?b", "?a=1&&k=v#f?b", "#f?b", "an empty piece, a question mark in the fragment"},
       }) {
    SCOPED_TRACE(why);
    URLComponents components = componentsOf(url);
    components.setQueryItems({});
    EXPECT_EQ(components.url()->relativeString(), empty);
    EXPECT_EQ(pairsOf(components), Pairs{});
    components = componentsOf(url);
    auto items = components.queryItems().value_or(std::vector<URLQueryItem>{});
    components.appendQueryItem("k", "v");
    EXPECT_EQ(components.url()->relativeString(), appended);
    items.emplace_back("k", "v");
    EXPECT_EQ(components.queryItems(), items) << "appending is reading, adding and writing";
    components.removeQuery();
    EXPECT_EQ(components.url()->relativeString(), removed);
  }
  URLComponents components = componentsOf("?a");
  components.removeQuery();
  EXPECT_EQ(components.url(), std::nullopt) << "nothing is left";
}

TEST(UrlComponents, ReturnsThePartsAsTheyAreWritten) {
  const URLComponents all = componentsOf("Https://u:p@H%41:8/a%2Fb?q=%41#f%20");
  EXPECT_EQ(all.scheme(), "Https");
  EXPECT_EQ(all.percentEncodedAuthority(), "u:p@H%41:8");
  EXPECT_EQ(all.percentEncodedPath(), "/a%2Fb");
  EXPECT_EQ(all.percentEncodedQuery(), "q=%41");
  EXPECT_EQ(all.percentEncodedFragment(), "f%20");
  const URLComponents few = componentsOf("p");
  EXPECT_FALSE(few.scheme() || few.percentEncodedAuthority() || few.percentEncodedFragment());
}

TEST(UrlComponents, ResolvesOnlyWhereAsked) {
  for (const auto& [reference, baseText, ignored, resolved, why] :
       Rows<std::string_view, std::string_view, std::optional<std::string>, std::optional<std::string>,
            std::string_view>{
           {"p?a=1", "https://ex.com/dir/page?x=y", "p?a=1", "https://ex.com/dir/p?a=1", "a relative path"},
           {"", "http://a/b/c/d;p?q", std::nullopt, "http://a/b/c/d;p?q", "the base itself"},
           {"#s", "http://a/b?q", "#s", "http://a/b?q#s", "a fragment of the base"},
           {"p", "dir/page", "p", "p", "a base that is relative"},
           {"p", "http://:x", "p", std::nullopt, "a base without parts"},
           {"http://h/../p", "http://a/", "http://h/../p", "http://h/../p", "an absolute link stays"},
           {"http://:x", "http://a/", std::nullopt, std::nullopt, "a link without parts"},
       }) {
    SCOPED_TRACE(why);
    const URL base = URL::fromUncheckedText(baseText);
    const URL url = URL::fromString(reference, base).value_or(URL::fromUncheckedText(reference));
    const auto textOf = [&url](BaseURL way) -> std::optional<std::string> {
      const auto components = URLComponents::fromUrl(url, way);
      const auto written = components ? components->url() : std::nullopt;
      return written ? std::optional(written->relativeString()) : std::nullopt;
    };
    EXPECT_EQ(textOf(BaseURL::ignored), ignored);
    EXPECT_EQ(textOf(BaseURL::resolved), resolved);
  }
}

}  // namespace
