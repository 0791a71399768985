// SPDX-License-Identifier: Apache-2.0
// NSNumber: a boolean, an integer or a real as an object. NSNull: the null object, for use in collections.
//
//   makeNumber(3)->isEqual(makeNumber(3.0))        true: by value, whatever the type; true == 1
//   makeNumber(-3.99)->integerValue()              -3
//   NSNull::null()                                 the one null object
//
// Left out: decimal numbers, comparing for order, text of reals in other than the shortest form.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <concepts>
#include <cstdint>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSNumber : public Object<NSNumber, NSObject> {
 public:
  using Leaf = NSNumber;

  enum class Kind : std::uint8_t { boolean, integer, unsignedInteger, real };

  /// Zero.
  NSNumber() noexcept : NSNumber(std::int64_t{0}) {}
  explicit NSNumber(bool value) noexcept : kind_(Kind::boolean), integer_(value) {}
  explicit NSNumber(std::int64_t value) noexcept : kind_(Kind::integer), integer_(value) {}
  explicit NSNumber(std::uint64_t value) noexcept
      : kind_(Kind::unsignedInteger), integer_(static_cast<std::int64_t>(value)) {}
  explicit NSNumber(double value) noexcept : kind_(Kind::real), real_(value) {}

  [[nodiscard]] Kind kind() const { return kind_; }
  /// The value as a signed integer: reals are truncated toward zero and saturate, NaN gives 0; unsigned values from
  /// 2^63 on wrap modulo 2^64.
  [[nodiscard]] virtual std::int64_t integerValue() const;
  [[nodiscard]] virtual std::uint64_t unsignedIntegerValue() const;
  [[nodiscard]] virtual double doubleValue() const;
  /// False for zero only.
  [[nodiscard]] virtual bool boolValue() const;
  /// The text of the value: "1", "-3", "0.5".
  [[nodiscard]] virtual Strong<NSString> stringValue() const;

  /// Compares by value across types; NaN equals NaN.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  [[nodiscard]] Strong<NSString> description() const override;
  [[nodiscard]] Strong<NSObject> copy() const override;

  using Protocols = List<NSSecureCoding>;

 private:
  Kind kind_;
  union {
    std::int64_t integer_;
    double real_;
  };
};

[[nodiscard]] inline Strong<NSNumber> makeNumber(bool value) { return make<NSNumber>(value); }
template <std::integral Type>
[[nodiscard]] Strong<NSNumber> makeNumber(Type value) {
  if constexpr (std::is_signed_v<Type>) {
    return make<NSNumber>(static_cast<std::int64_t>(value));
  } else {
    return make<NSNumber>(static_cast<std::uint64_t>(value));
  }
}
[[nodiscard]] inline Strong<NSNumber> makeNumber(double value) { return make<NSNumber>(value); }

class HAVRIN_EXPORT NSNull : public Object<NSNull, NSObject> {
 public:
  using Leaf = NSNull;

  /// The one null object of the process.
  [[nodiscard]] static NSNull* null();
  [[nodiscard]] Strong<NSString> description() const override;
  [[nodiscard]] Strong<NSObject> copy() const override;

  using Protocols = List<NSSecureCoding>;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSNumber>();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSNull>();

}  // namespace platform
}  // namespace havrin
