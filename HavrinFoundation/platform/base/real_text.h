// SPDX-License-Identifier: Apache-2.0
// Reading floating-point numbers, also with standard libraries whose std::from_chars reads integers alone (libc++ before
// version 20). Internal.
#pragma once

#include <charconv>

namespace havrin::detail {

#ifdef __cpp_lib_to_chars

/// std::from_chars for float and double.
template <class Real>
std::from_chars_result realFromChars(const char* first, const char* last, Real& value) noexcept {
  return std::from_chars(first, last, value);
}

#else

/// As std::from_chars in its general format. Cost: a copy of the text.
std::from_chars_result realFromChars(const char* first, const char* last, double& value);
std::from_chars_result realFromChars(const char* first, const char* last, float& value);

#endif

}  // namespace havrin::detail
