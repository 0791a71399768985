// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/base36_messages.h>

#include <HavrinFoundation/text/base36.h>

namespace havrin {

std::string base36Value(const NSNumber& number) { return base36Value(number.integerValue()); }

std::string base36Value(const NSString& decimal) { return base36Value(decimal.integerValue()); }

std::int64_t base36ValueAsBase10(const NSString& text) {
  const auto characters = strictUtf8(text);
  return characters ? base36ValueAsBase10(*characters).value_or(0) : 0;
}

namespace {

Strong<NSString> numberValue(NSNumber& self) { return makeString(base36Value(self)); }

Strong<NSString> stringValue(NSString& self) { return makeString(base36Value(self)); }

std::int64_t stringValueAsBase10(NSString& self) { return base36ValueAsBase10(self); }

constexpr MethodRow kNumberRows[] = {row<NSNumber, "base36Value", numberValue>()};
constexpr MethodRow kStringRows[] = {row<NSString, "base36Value", stringValue>(),
                                     row<NSString, "base36ValueAsBase10", stringValueAsBase10>()};

}  // namespace

extern constinit const Category kBase36Numbers{classObject<NSNumber>, "HavrinFoundation", kNumberRows, {}};
extern constinit const Category kBase36Strings{classObject<NSString>, "HavrinFoundation", kStringRows, {}};

}  // namespace havrin
