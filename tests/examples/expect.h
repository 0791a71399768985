// SPDX-License-Identifier: Apache-2.0
// How the results that headers' examples promise are compared. It knows no header of the library.
#pragma once

#include <cmath>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <type_traits>

namespace havrin_examples {

/// What "null" and "empty" promise.
struct Absent {};
inline constexpr Absent absent;

inline int& failures() {
  static int count = 0;
  return count;
}

inline void report(const char* place, std::string_view what) {
  ++failures();
  std::printf("%s: %.*s\n", place, static_cast<int>(what.size()), what.data());
}

/// The text of a string, of a string object, or of an optional or a reference to one.
template <class T>
std::string textOf(const T& value) {
  if constexpr (std::is_convertible_v<const T&, std::string_view>) {
    return std::string(std::string_view(value));
  } else if constexpr (requires { utf8(value); }) {
    return utf8(value);
  } else if constexpr (requires { *value; }) {
    return textOf(*value);
  } else {
    return textOf(value.description());
  }
}

template <class T, class E>
void expect(const char* place, const T& value, const E& expected) {
  if constexpr (std::is_same_v<E, Absent>) {
    if (value) report(place, "expected nothing, got something");
  } else if constexpr (std::is_convertible_v<const E&, std::string_view>) {
    const std::string text = textOf(value);
    if (text != expected) report(place, "expected \"" + std::string(expected) + "\", got \"" + text + "\"");
  } else if constexpr (std::is_floating_point_v<T>) {
    if (!(std::fabs(value - static_cast<T>(expected)) < 1e-9))
      report(place, "another number: " + std::to_string(value));
  } else if constexpr (std::is_arithmetic_v<T> && std::is_arithmetic_v<E>) {
    if (value != static_cast<T>(expected)) report(place, "another number: " + std::to_string(value));
  } else {
    if (!(value == expected)) report(place, "another value");
  }
}
/// A pair in braces: {location, length} or the bounds of a range.
template <class T>
requires std::is_class_v<T>
void expect(const char* place, const T& value, const std::type_identity_t<T>& expected) {
  if (!(value == expected)) report(place, "another pair");
}

template <class T>
requires std::is_class_v<T>
void expect(const char* place, const T& value, const std::type_identity_t<typename T::value_type>& expected) {
  if (!(value == expected)) report(place, "another pair");
}

template <class E, class Call>
void expectThrow(const char* place, const Call& call) {
  try {
    call();
    report(place, "nothing was thrown");
  } catch (const E&) {
  }
}

inline void guarded(const char* name, void (*run)()) {
  try {
    run();
  } catch (const std::exception& error) {
    report(name, error.what());
  }
}

}  // namespace havrin_examples
