// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/ns_url.h>

namespace {

using namespace havrin;

Strong<NSURL> link(std::string_view text, const NSURL* base = nullptr) {
  return alloc<NSURL>()->initWithStringRelativeToURL(makeString(text), base);
}

// Keeps its link elsewhere.
class Shortcut : public Object<Shortcut, NSURL> {
 public:
  const URL& value() const override { return target_; }

 private:
  URL target_ = *URL::fromString("../d", *URL::fromString("https://h/a/b/c"));
};

TEST(NSURL, HasRelativeAndAbsoluteText) {
  const auto page = link("https://h/a/b/c");
  const auto part = link("#f", page);
  for (const auto& [url, relative, absolute, baseText, description, why] :
       Rows<Strong<NSURL>, const char*, const char*, const char*, const char*, const char*>{
           {page, "https://h/a/b/c", "https://h/a/b/c", "none", "https://h/a/b/c", "no base"},
           {link("../d", page), "../d", "https://h/a/d", "https://h/a/b/c", "../d -- https://h/a/b/c", "a base"},
           {link("x", part), "x", "https://h/a/b/x", "https://h/a/b/c#f", "x -- https://h/a/b/c#f",
            "a base with a base"},
           {link("", page), "", "https://h/a/b/c", "https://h/a/b/c", " -- https://h/a/b/c", "the base itself"},
           {link("mailto:a@b.c", page), "mailto:a@b.c", "mailto:a@b.c", "none", "mailto:a@b.c", "a scheme of its own"},
           {make<Shortcut>(), "../d", "https://h/a/d", "https://h/a/b/c", "../d -- https://h/a/b/c", "a subclass"},
           {link("e", make<Shortcut>()), "e", "https://h/a/e", "https://h/a/d", "e -- https://h/a/d", "seen from one"},
           {make<NSURL>(), "", "", "none", "", "not initialised"},
       }) {
    SCOPED_TRACE(why);
    ASSERT_TRUE(url);
    EXPECT_EQ(utf8(*url->relativeString()), relative);
    EXPECT_EQ(utf8(*url->absoluteString()), absolute);
    EXPECT_EQ(utf8(*url->absoluteURL()->description()), absolute);
    EXPECT_EQ(utf8(*url->description()), description);
    const auto base = url->baseURL();
    EXPECT_EQ(base ? utf8(*base->absoluteString()) : "none", baseText);
    EXPECT_EQ(url->copy(), url);
  }
}

TEST(NSURL, IsNullForTextThatIsNotALink) {
  EXPECT_FALSE(NSURL::URLWithString(nullptr) || NSURL::URLWithString(makeString("")));
  EXPECT_FALSE(link("my file", link("https://h/a")));
  EXPECT_FALSE(NSURL::URLWithString(makeString(u"https://h/\xD83D"))) << "half a surrogate pair";
}

TEST(NSURL, IsEqualByTextAndBase) {
  const auto page = link("https://h/a/b/c");
  const auto url = link("../d", page);
  expectEquality(url, {link("../d", link("c", link("https://h/a/b/"))), make<Shortcut>(), make<NSURL>(url->value())},
                 {url->absoluteURL(), link("../d"), link("../d", link("https://h/a/b/C")), page, s("../d")});
}

}  // namespace
