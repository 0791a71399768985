// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/attributed_strings_messages.h>

#include <HavrinFoundation/frame/not_localized.h>
#include <HavrinFoundation/text/attributed_strings.h>

namespace havrin {

namespace {

NSRange entireRangeMessage(NSAttributedString& self) { return entireRange(self); }

Strong<NSString> orEmpty(NSString* string) {
  return string ? Strong<NSString>(string) : Strong<NSString>(NotLocalizedString(makeString("")));
}

Strong<NSAttributedString> initWithOptionalString(NSAttributedString& self, NSString* string) {
  return self.initWithString(orEmpty(string));
}

Strong<NSAttributedString> initWithOptionalStringAttributes(NSAttributedString& self, NSString* string,
                                                            NSDictionary* attributes) {
  return self.initWithStringAttributes(orEmpty(string), attributes);
}

constexpr MethodRow kRows[] = {
    row<NSAttributedString, "entireRange", entireRangeMessage>(),
    row<NSAttributedString, "initWithOptionalString:", initWithOptionalString>(),
    row<NSAttributedString, "initWithOptionalString:attributes:", initWithOptionalStringAttributes>(),
};

}  // namespace

extern constinit const Category kAttributedStrings{classObject<NSAttributedString>, "HavrinFoundation", kRows, {}};

}  // namespace havrin
