// Values as objects and back, for messages sent by name and for values read by key. The number functions are those of
// foundation's NSNumber.
#pragma once

#include <concepts>
#include <cstdint>
#include <type_traits>

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/class.h>

namespace havrin::inline platform {

[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> boxBoolean(bool value);
[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> boxInteger(std::int64_t value);
[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> boxUnsigned(std::uint64_t value);
[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> boxReal(double value);
/// The value of a number object. Throws: NSException (InvalidArgument) for null and for objects that are no numbers.
[[nodiscard]] HAVRIN_EXPORT bool unboxBoolean(NSObject* object);
[[nodiscard]] HAVRIN_EXPORT std::int64_t unboxInteger(NSObject* object);
[[nodiscard]] HAVRIN_EXPORT std::uint64_t unboxUnsigned(NSObject* object);
[[nodiscard]] HAVRIN_EXPORT double unboxReal(NSObject* object);

/// How a type travels as an object; types without a specialisation cannot.
template <class T>
struct Boxing;

template <>
struct Boxing<bool> {
  static Strong<NSObject> box(bool value) { return boxBoolean(value); }
  static bool unbox(NSObject* object) { return unboxBoolean(object); }
};
template <std::floating_point T>
struct Boxing<T> {
  static Strong<NSObject> box(T value) { return boxReal(static_cast<double>(value)); }
  static T unbox(NSObject* object) { return static_cast<T>(unboxReal(object)); }
};
template <std::signed_integral T>
struct Boxing<T> {
  static Strong<NSObject> box(T value) { return boxInteger(value); }
  static T unbox(NSObject* object) { return static_cast<T>(unboxInteger(object)); }
};
template <std::unsigned_integral T>
struct Boxing<T> {
  static Strong<NSObject> box(T value) { return boxUnsigned(value); }
  static T unbox(NSObject* object) { return static_cast<T>(unboxUnsigned(object)); }
};
template <std::derived_from<NSObject> T>
struct Boxing<T*> {
  static Strong<NSObject> box(T* value) { return value; }
  static T* unbox(NSObject* object) { return checkedCast<T>(object); }
};
template <std::derived_from<NSObject> T>
struct Boxing<Strong<T>> {
  static Strong<NSObject> box(Strong<T> value) { return value; }
  static Strong<T> unbox(NSObject* object) { return checkedCast<T>(object); }
};

template <class T>
concept Boxable = std::is_void_v<T> || requires(T value) {
  Boxing<T>::box(value);
};

/// What the runtime knows of a message's types.
struct SignatureInfo {
  const std::type_info* type;  // of the function type R(A...): equal across images
  std::size_t argumentCount;
  bool takesNull;  // every argument is an object
  /// Calls an implementation of this signature with objects. Null when some type of it cannot be boxed.
  Strong<NSObject> (*call)(Implementation implementation, NSObject* self, NSObject* const* arguments);
};

namespace detail {

template <class R, class... A>
Strong<NSObject> callBoxed(Implementation implementation, NSObject* self, [[maybe_unused]] NSObject* const* arguments) {
  const auto function = reinterpret_cast<R (*)(NSObject*, A...)>(implementation);
  return [&]<std::size_t... I>(std::index_sequence<I...>)->Strong<NSObject> {
    if constexpr (std::is_void_v<R>) {
      function(self, Boxing<A>::unbox(arguments[I])...);
      return nullptr;
    } else {
      return Boxing<R>::box(function(self, Boxing<A>::unbox(arguments[I])...));
    }
  }
  (std::index_sequence_for<A...>{});
}

template <class F>
struct SignatureInfoOf;
template <class R, class... A>
struct SignatureInfoOf<R(A...)> {
  static constexpr auto call() -> decltype(SignatureInfo::call) {
    if constexpr (Boxable<R> && (Boxable<A> && ...)) {
      return &callBoxed<R, A...>;
    } else {
      return nullptr;
    }
  }
  static constexpr SignatureInfo info{&typeid(R(A...)), sizeof...(A), (std::is_convertible_v<std::nullptr_t, A> && ...),
                                      call()};
};

}  // namespace detail

}  // namespace havrin::inline platform
