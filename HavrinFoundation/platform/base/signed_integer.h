// SPDX-License-Identifier: Apache-2.0
// The types of arguments that a function with a std::int64_t parameter accepts when it must not convert silently.
//
//   kFitsInt64<int>                      true
//   kFitsInt64<unsigned long long>       false: a template for OtherThanInt64 rejects it, and 1.5, true and 'a'
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
