// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/text/attributed_strings.h>
#include <HavrinFoundation/text/attributed_strings_messages.h>

using namespace havrin;

namespace {

// Counts its initialisations.
class Title : public Object<Title, NSAttributedString> {
 public:
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
class Shouting : public Object<Shouting, NSAttributedString> {
 public:
  Strong<NSAttributedString> shout(NSString*) { return sendSuper<"initWithOptionalString:">(*this, makeString("!")); }
  using Members = List<Method<"initWithOptionalString:", &Shouting::shout>>;
};

TEST(AttributedStrings, TreatNullTextAndAttributesAsEmpty) {
  const auto font = makeDictionary({{makeString("NSFont"), makeNumber(12)}});
  const struct {
    std::optional<std::string_view> text;
    Strong<NSDictionary> attributes;
    const char* description;
    std::uint64_t length;
    const char* why;
  } rows[] = {
      {"On air", font, "On air{NSFont = 12}", 6, "text and attributes"},
      {"On air", nullptr, "On air{}", 6, "no attributes"},
      {"", font, "", 0, "empty text keeps no attributes"},
      {std::nullopt, font, "", 0, "no text"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    std::vector<Strong<NSAttributedString>> made{fromOptionalString<NSAttributedString>(row.text, row.attributes)};
    if (!row.attributes) made.push_back(fromOptionalString<NSAttributedString>(row.text));
    for (const auto& string : made) {
      EXPECT_EQ(utf8(*string->description()), row.description);
      EXPECT_EQ(entireRange(*string), (NSRange{0, row.length}));
      EXPECT_EQ(send<"entireRange">(string), (NSRange{0, row.length}));
    }
  }
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
