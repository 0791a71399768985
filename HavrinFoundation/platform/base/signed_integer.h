// The types that count as whole numbers where a function takes std::int64_t and must not quietly convert anything else.
//
//   std::string base36Value(std::int64_t integer);
//   template <OtherThanInt64 Type>
//   std::string base36Value(Type) { static_assert(kFitsInt64<Type>, "..."); }      1.5, true, 'a', 7ull do not compile
#pragma once

#include <cstdint>
#include <type_traits>

namespace havrin {
inline namespace platform {

/// Whether Type is an integer type (truth values and characters are not) all of whose values fit std::int64_t.
template <class Type>
inline constexpr bool kFitsInt64 =
    std::is_same_v<Type, signed char> || std::is_same_v<Type, short> || std::is_same_v<Type, int> ||
    std::is_same_v<Type, long> || std::is_same_v<Type, long long> || std::is_same_v<Type, unsigned char> ||
    std::is_same_v<Type, unsigned short> || std::is_same_v<Type, unsigned int>;

/// Arithmetic types that lose something as std::int64_t: truth values, characters, fractions, the highest bit.
template <class Type>
concept OtherThanInt64 = std::is_arithmetic_v<Type> && !kFitsInt64<Type>;

}  // namespace platform
}  // namespace havrin
