// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/text/attributed_strings.h>
#include <HavrinFoundation/text/attributed_strings_messages.h>

using namespace havrin;

namespace {

// Counts its initialisations.
struct Title : Object<Title, NSAttributedString> {
  static inline int plain = 0, attributed = 0;
  Strong<NSAttributedString> initWithString(NSString* string) override {
    ++plain;
    return NSAttributedString::initWithString(string);
  }
  Strong<NSAttributedString> initWithStringAttributes(NSString* string, NSDictionary* attributes) override {
    ++attributed;
    return NSAttributedString::initWithStringAttributes(string, attributes);
  }
};

// Overrides the message.
struct Shouting : Object<Shouting, NSAttributedString> {
  Strong<NSAttributedString> shout(NSString*) { return sendSuper<"initWithOptionalString:">(*this, makeString("!")); }
  using Members = List<Method<"initWithOptionalString:", &Shouting::shout>>;
};

TEST(AttributedStrings, TreatNullTextAndAttributesAsEmpty) {
  const auto font = makeDictionary({{makeString("NSFont"), makeNumber(12)}});
  const auto string = fromOptionalString<NSAttributedString>("On air", font);
  EXPECT_EQ(text(string), "On air{NSFont = 12}");
  EXPECT_EQ(entireRange(*string), (NSRange{0, 6}));
  EXPECT_EQ(send<"entireRange">(string), (NSRange{0, 6}));
  EXPECT_EQ(text(fromOptionalString<NSAttributedString>("On air", nullptr)), "On air{}");
  EXPECT_EQ(text(fromOptionalString<NSAttributedString>("On air")), "On air{}");
  EXPECT_EQ(text(fromOptionalString<NSAttributedString>(std::nullopt, font)), "");
  EXPECT_EQ(text(fromOptionalString<NSAttributedString>(std::nullopt)), "");
}

TEST(AttributedStrings, UseTheOverridesOfASubclass) {
  Title::plain = Title::attributed = 0;
  EXPECT_TRUE(isKind<Title>(fromOptionalString<Title>("a")));
  EXPECT_EQ(Title::plain, 1);
  EXPECT_EQ(Title::attributed, 1) << "the one initialiser calls the other";
  (void)send<"initWithOptionalString:attributes:">(alloc<Title>(), nullptr, nullptr);
  EXPECT_EQ(Title::attributed, 2);
  EXPECT_EQ(utf8(*fromOptionalString<Shouting>("a")->string()), "!") << "the typed form sends the message";
  EXPECT_EQ(send<"entireRange">(Strong<NSAttributedString>()), NSRange());
}

}  // namespace
