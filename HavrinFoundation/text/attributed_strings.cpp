// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/attributed_strings.h>

#include <HavrinFoundation/text/attributed_strings_messages.h>

namespace havrin {

namespace {

Strong<NSString> stringOrNull(std::optional<std::string_view> string) {
  return string ? makeString(*string) : Strong<NSString>();
}

}  // namespace

Strong<NSAttributedString> detail::initialised(NSAttributedString& allocated, std::optional<std::string_view> string) {
  return send<"initWithOptionalString:">(allocated, stringOrNull(string));
}

Strong<NSAttributedString> detail::initialised(NSAttributedString& allocated, std::optional<std::string_view> string,
                                               NSDictionary* attributes) {
  return send<"initWithOptionalString:attributes:">(allocated, stringOrNull(string), attributes);
}

NSRange entireRange(const NSAttributedString& string) { return {0, string.length()}; }

}  // namespace havrin
