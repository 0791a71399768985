// The types that count as whole numbers where a function takes std::int64_t and must not quietly convert anything else.
//
//   std::string base36Value(std::int64_t integer);
//   template <OtherThanInt64 T>
//   std::string base36Value(T) { static_assert(kFitsInt64<T>, "..."); }      1.5, true, 'a', 7ull do not compile
#pragma once

#include <cstdint>
#include <type_traits>

namespace havrin::inline platform {

/// Whether T is an integer type (truth values and characters are not) all of whose values fit std::int64_t.
template <class T>
inline constexpr bool kFitsInt64 =
    std::is_same_v<T, signed char> || std::is_same_v<T, short> || std::is_same_v<T, int> || std::is_same_v<T, long> ||
    std::is_same_v<T, long long> || std::is_same_v<T, unsigned char> || std::is_same_v<T, unsigned short> ||
    std::is_same_v<T, unsigned int>;

/// Arithmetic types that lose something as std::int64_t: truth values, characters, fractions, the highest bit.
template <class T>
concept OtherThanInt64 = std::is_arithmetic_v<T> && !kFitsInt64<T>;

}  // namespace havrin::inline platform
