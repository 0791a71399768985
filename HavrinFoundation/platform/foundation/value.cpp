// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/value.h>

#include <string>

namespace havrin {
inline namespace platform {

bool NSValue::isEqual(const NSObject* other) const {
  const NSValue* value = cast<NSValue>(other);
  return value != nullptr && range_ == value->range_;
}

std::uint64_t NSValue::hash() const { return (range_.location * 31 + range_.length) * 0x9E37'79B9'7F4A'7C15; }

Strong<NSString> NSValue::description() const {
  return makeString("NSRange: {" + std::to_string(range_.location) + ", " + std::to_string(range_.length) + "}");
}

Strong<NSObject> NSValue::copy() const { return Strong<NSObject>(const_cast<NSValue*>(this)); }

template ClassObject* buildClass<NSValue>();

}  // namespace platform
}  // namespace havrin
