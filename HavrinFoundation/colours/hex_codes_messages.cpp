// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/colours/hex_codes_messages.h>

#include <HavrinFoundation/colours/hex_codes.h>

namespace havrin {

namespace {

Strong<NSString> hexStringMessage(UIColor& self) {
  const auto code = hexString(self);
  return code ? makeString(*code) : nullptr;
}

Strong<UIColor> colorWithHexStringMessage(ClassOf<UIColor>, NSString* code) {
  return code ? colorWithHexString(utf8(*code)) : nullptr;
}

Strong<NSString> sanitizedWithHexString(ClassOf<UIColor>, NSString* code) {
  const auto clean = detail::sanitizedHexCode(code ? utf8(*code) : "");
  return clean ? makeString(clean->view()) : nullptr;
}

Strong<UIColor> randomColorMessage(ClassOf<UIColor>) { return randomColor(); }

constexpr MethodRow kRows[] = {row<UIColor, "h_hexString", hexStringMessage>()};
constexpr MethodRow kClassRows[] = {classRow<UIColor, "h_colorWithHexString:", colorWithHexStringMessage>(),
                                    classRow<UIColor, "sanitizedWithHexString:", sanitizedWithHexString>(),
                                    classRow<UIColor, "randomColor", randomColorMessage>()};

}  // namespace

extern constinit const Category kColourCodes{classObject<UIColor>, "HavrinFoundation", kRows, kClassRows};

}  // namespace havrin
