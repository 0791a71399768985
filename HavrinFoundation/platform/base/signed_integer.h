// The types that count as whole numbers where a function takes std::int64_t and must not quietly convert anything else.
//
//   std::string base36Value(std::int64_t integer);
//   template <OtherThanSignedInteger T>
//   std::string base36Value(T) = delete;      // 1.5, true, 'a', 7u: no conversion that changes the value
#pragma once

#include <concepts>
#include <type_traits>

namespace havrin::inline platform {

template <class T>
concept SignedInteger = std::same_as<T, signed char> || std::same_as<T, short> || std::same_as<T, int> ||
    std::same_as<T, long> || std::same_as<T, long long>;

/// Arithmetic types that would convert to a signed integer by losing something: truth values, characters, fractions,
/// the sign bit.
template <class T>
concept OtherThanSignedInteger = std::is_arithmetic_v<T> && !SignedInteger<T>;

}  // namespace havrin::inline platform
