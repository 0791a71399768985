// SPDX-License-Identifier: Apache-2.0
// NSValue: a range as an object, and how messages that give or take ranges are called with objects.
//
//   NSValue::valueWithRange({2, 5})->rangeValue()                            {2, 5}
//   NSValue::valueWithRange({2, 5})->isEqual(NSValue::valueWithRange({2, 5}))      true
//
// Left out: values of other types; numbers are NSNumber, which is a class of its own here.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/boxing.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSValue : public Object<NSValue, NSObject> {
 public:
  using Leaf = NSValue;

  explicit NSValue(NSRange range) noexcept : range_(range) {}

  [[nodiscard]] static Strong<NSValue> valueWithRange(NSRange range) { return make<NSValue>(range); }

  [[nodiscard]] NSRange rangeValue() const { return range_; }

  /// Equal ranges.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  /// "NSRange: {2, 5}".
  [[nodiscard]] Strong<NSString> description() const override;
  [[nodiscard]] Strong<NSObject> copy() const override;

 private:
  NSRange range_;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSValue>();

template <>
struct Boxing<NSRange> {
  static Strong<NSObject> box(NSRange range) { return NSValue::valueWithRange(range); }
  static NSRange unbox(NSObject* object) { return checkedReference<NSValue>(object).rangeValue(); }
};

}  // namespace platform
}  // namespace havrin
