// SPDX-License-Identifier: Apache-2.0
// Values as objects and back, for messages sent by name and for values read by key. The number functions are those of
// foundation's NSNumber.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/class.h>

#include <concepts>
#include <cstdint>
#include <type_traits>

namespace havrin {
inline namespace platform {

[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> boxBoolean(bool value);
[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> boxInteger(std::int64_t value);
[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> boxUnsigned(std::uint64_t value);
[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> boxReal(double value);
/// The value of a number object. Throws: NSException (InvalidArgument) for null and for objects that are not numbers.
[[nodiscard]] HAVRIN_EXPORT bool unboxBoolean(NSObject* object);
[[nodiscard]] HAVRIN_EXPORT std::int64_t unboxInteger(NSObject* object);
[[nodiscard]] HAVRIN_EXPORT std::uint64_t unboxUnsigned(NSObject* object);
[[nodiscard]] HAVRIN_EXPORT double unboxReal(NSObject* object);

/// How a type travels as an object; types without a specialisation cannot.
template <class Type>
struct Boxing;

template <>
struct Boxing<bool> {
  static Strong<NSObject> box(bool value) { return boxBoolean(value); }
  static bool unbox(NSObject* object) { return unboxBoolean(object); }
};
template <std::floating_point Type>
struct Boxing<Type> {
  static Strong<NSObject> box(Type value) { return boxReal(static_cast<double>(value)); }
  static Type unbox(NSObject* object) { return static_cast<Type>(unboxReal(object)); }
};
template <std::signed_integral Type>
struct Boxing<Type> {
  static Strong<NSObject> box(Type value) { return boxInteger(value); }
  static Type unbox(NSObject* object) { return static_cast<Type>(unboxInteger(object)); }
};
template <std::unsigned_integral Type>
struct Boxing<Type> {
  static Strong<NSObject> box(Type value) { return boxUnsigned(value); }
  static Type unbox(NSObject* object) { return static_cast<Type>(unboxUnsigned(object)); }
};
template <std::derived_from<NSObject> Type>
struct Boxing<Type*> {
  static Strong<NSObject> box(Type* value) { return value; }
  static Type* unbox(NSObject* object) { return checkedCast<Type>(object); }
};
template <std::derived_from<NSObject> Type>
struct Boxing<Strong<Type>> {
  static Strong<NSObject> box(Strong<Type> value) { return value; }
  static Strong<Type> unbox(NSObject* object) { return checkedCast<Type>(object); }
};

template <class Type>
concept Boxable = std::is_void_v<Type> || requires(Type value) {
  Boxing<Type>::box(value);
};

/// What the runtime knows of a message's types.
struct SignatureInfo {
  const std::type_info* type;  // of the function type Result(Arguments...): equal across images
  std::size_t argumentCount;
  bool takesNull;  // every argument is an object
  /// Calls an implementation of this signature with objects. Null when some type of it cannot be boxed.
  Strong<NSObject> (*call)(Implementation implementation, NSObject* self, NSObject* const* arguments);
};

}  // namespace platform

namespace detail {

template <class Result, class... Arguments>
Strong<NSObject> callBoxed(Implementation implementation, NSObject* self, [[maybe_unused]] NSObject* const* arguments) {
  const auto function = reinterpret_cast<Result (*)(NSObject*, Arguments...)>(implementation);
  return [&]<std::size_t... Index>(std::index_sequence<Index...>)->Strong<NSObject> {
    if constexpr (std::is_void_v<Result>) {
      function(self, Boxing<Arguments>::unbox(arguments[Index])...);
      return nullptr;
    } else {
      return Boxing<Result>::box(function(self, Boxing<Arguments>::unbox(arguments[Index])...));
    }
  }
  (std::index_sequence_for<Arguments...>{});
}

template <class Function>
struct SignatureInfoOf;
template <class Result, class... Arguments>
struct SignatureInfoOf<Result(Arguments...)> {
  static constexpr auto call() -> decltype(SignatureInfo::call) {
    if constexpr (Boxable<Result> && (Boxable<Arguments> && ...)) {
      return &callBoxed<Result, Arguments...>;
    } else {
      return nullptr;
    }
  }
  static constexpr SignatureInfo info{&typeid(Result(Arguments...)), sizeof...(Arguments),
                                      (std::is_convertible_v<std::nullptr_t, Arguments> && ...), call()};
};

}  // namespace detail

}  // namespace havrin
