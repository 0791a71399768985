// SPDX-License-Identifier: Apache-2.0
// Where one scalar goes while it is decoded: a boolean, an integer of some width, a floating-point number or a text of
// the caller's. A decoder passes the value in its data; the target takes it or reports why it does not fit. So the
// rules below hold for every format and are written once.
//
//   std::int8_t level = 0;
//   ScalarTarget target(level);
//   target.putNumberText("1e2")      level is 100
//   target.putNumberText("300")      dataCorrupted: expected an 8-bit integer, found the number 300
//   target.putText("7")              typeMismatch: expected an 8-bit integer, found the string "7"
//
// Rules: an integer takes any number with a whole value in its range, also one written with a fraction or an exponent
// (`34.0`, `1e2`, `-0`) as long as its magnitude stays below 2^53; a floating-point number takes any number in its
// range; a number is not a boolean, a boolean is not a number, and a text is neither. Null is a value only to a
// nullable target.
#pragma once

#include <HavrinFoundation/platform/documents/decoding_error.h>
#include <HavrinFoundation/platform/export.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace havrin {

namespace detail {
template <class ValueType>
inline constexpr bool kIsCharacter =
    std::same_as<ValueType, char> || std::same_as<ValueType, wchar_t> || std::same_as<ValueType, char8_t> ||
    std::same_as<ValueType, char16_t> || std::same_as<ValueType, char32_t>;
}  // namespace detail

inline namespace platform {

/// The types that a single step decodes: bool, integers of 8 to 64 bits, float, double and std::string.
template <class ValueType>
concept DecodableScalar = std::same_as<ValueType, std::string> || std::same_as<ValueType, float> ||
    std::same_as<ValueType, double> ||
    (std::integral<ValueType> && sizeof(ValueType) <= 8 && !detail::kIsCharacter<ValueType>);

/// A typed reference to a scalar of the caller's, to be filled once. Each `put` stores the value, or leaves the scalar
/// as it is and keeps the error.
class HAVRIN_EXPORT ScalarTarget {
 public:
  enum class Type : std::uint8_t {
    boolean,
    int8,
    int16,
    int32,
    int64,
    uint8,
    uint16,
    uint32,
    uint64,
    float32,
    float64,
    text,
    object,  // a target of these two takes nothing
    array
  };

  template <DecodableScalar ValueType>
  explicit ScalarTarget(ValueType& scalar, ErrorDetail detail = ErrorDetail::full)
      : scalar_(&scalar), type_(typeOf<ValueType>()), detail_(detail) {}
  /// A nullable target: null sets `isNull` and leaves the scalar alone.
  template <DecodableScalar ValueType>
  ScalarTarget(ValueType& scalar, bool& isNull, ErrorDetail detail = ErrorDetail::full)
      : scalar_(&scalar), isNull_(&isNull), type_(typeOf<ValueType>()), detail_(detail) {}
  /// A target of a type that `typeOf` gave, or one that takes nothing: for the error about what is not a container.
  explicit ScalarTarget(Type type, void* scalar = nullptr, ErrorDetail detail = ErrorDetail::full)
      : scalar_(scalar), type_(type), detail_(detail) {}
  ScalarTarget(const ScalarTarget&) = delete;
  ScalarTarget& operator=(const ScalarTarget&) = delete;

  /// The type of a scalar.
  template <DecodableScalar ValueType>
  [[nodiscard]] static constexpr Type typeOf() {
    if constexpr (std::same_as<ValueType, std::string>)
      return Type::text;
    else if constexpr (std::same_as<ValueType, bool>)
      return Type::boolean;
    else if constexpr (std::same_as<ValueType, float>)
      return Type::float32;
    else if constexpr (std::same_as<ValueType, double>)
      return Type::float64;
    else {
      constexpr int width = sizeof(ValueType) == 1 ? 0 : sizeof(ValueType) == 2 ? 1 : sizeof(ValueType) == 4 ? 2 : 3;
      return static_cast<Type>(width + static_cast<int>(std::signed_integral<ValueType> ? Type::int8 : Type::uint8));
    }
  }

  [[nodiscard]] Type type() const { return type_; }
  /// What the target wants, in words: "an unsigned 16-bit integer".
  [[nodiscard]] std::string_view expected() const;

  void putNull();
  void putBoolean(bool value) {
    if (type_ != Type::boolean) return refuse(Found::boolean, value ? "true" : "false");
    std::memcpy(scalar_, &value, sizeof value);
  }
  void putInteger(std::int64_t value);
  void putInteger(std::uint64_t value);
  void putReal(double value);
  /// Takes a number as JSON writes it (RFC 8259, section 6); `text` must have that form. `readable`: how many bytes may
  /// be read from its first one on, which makes short numbers fast; the first byte behind `text` is not a digit.
  void putNumberText(std::string_view text, std::size_t readable = 0);
  /// Takes a number like that whose end is not known yet, if it fits and has at most seven digits on either side of a
  /// point, and no exponent. Result: false, with nothing changed, if it does not, or if `readable` is below kShortNumber.
  [[nodiscard]] bool putShortNumber(const char* number, std::size_t readable);
  static constexpr std::size_t kShortNumber = 18;
  void putText(std::string_view value) {
    if (type_ != Type::text) return refuse(Found::string, value);
    static_cast<std::string*>(scalar_)->assign(value);
  }
  /// Takes nothing: the value (an object, an array, a date) is not a scalar that a target can hold.
  void refuse(Found found, std::string_view excerpt = {});
  /// Takes nothing: the value cannot be had, for a reason of the format's.
  void fail(detail::ErrorHolder failure) { failure_ = std::move(failure); }
  void fail(DecodingError error) { failure_ = std::move(error).holder(); }

  /// The error, or nothing.
  [[nodiscard]] detail::ErrorHolder& failure() { return failure_; }

 private:
  [[nodiscard]] bool isInteger() const { return type_ >= Type::int8 && type_ <= Type::uint64; }
  [[nodiscard]] bool isReal() const { return type_ == Type::float32 || type_ == Type::float64; }
  [[nodiscard]] bool storeInteger(bool isNegative, std::uint64_t magnitude);
  [[nodiscard]] bool storeReal(double value);
  void putLongNumberText(bool isNegative, std::string_view text);
  void putRealText(std::string_view text);
  void refuseNumber(std::string_view number);

  void* scalar_;
  bool* isNull_ = nullptr;
  detail::ErrorHolder failure_;
  Type type_;
  ErrorDetail detail_;
};

}  // namespace platform
}  // namespace havrin
