// SPDX-License-Identifier: Apache-2.0
// What the shared libraries export, and what the headers require of the compiler.
#pragma once

#if __cplusplus < 202002L
#error "HavrinFoundation needs C++20 or later: compile with -std=c++20"
#elif !defined(__cpp_exceptions)
#error "HavrinFoundation needs exceptions: compile without -fno-exceptions"
#elif !defined(__cpp_rtti)
#error "HavrinFoundation needs run-time type information: compile without -fno-rtti"
#endif
#if __cplusplus < 202002L || !defined(__cpp_exceptions) || !defined(__cpp_rtti)
#include <see_the_error_above>  // a missing file ends the compilation, which #error does not
#endif

#define HAVRIN_EXPORT __attribute__((visibility("default")))
