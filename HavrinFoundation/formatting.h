// SPDX-License-Identifier: Apache-2.0
// {fmt} for whatever printing.h prints, and object_printing.h where it is included before. It needs {fmt} 9 or later, which
// the library itself does not use. Not in the umbrella header: a file that uses it includes it.
//
//   fmt::format("{}", NSRange{0, 2})              "{0, 2}"
//   fmt::format("[{:>10}]", NSRange{0, 2})        "[    {0, 2}]"
//   fmt::format("{:.10}", Date())                 "2001-01-01"
//
// Fill, width and precision are those of a text.
// Left out: wide characters; formats of its own for dates and colours (DateFormat and hex codes have them).
#pragma once

#include <HavrinFoundation/printing.h>

#include <fmt/format.h>

#include <string>
#include <string_view>

template <havrin::detail::Printed Type>
struct fmt::formatter<Type, char> : fmt::formatter<std::string_view, char> {
  template <class Context>
  auto format(const Type& value, Context& context) const {
    const std::string text = havrin::detail::Printing<Type>::text(value);
    return fmt::formatter<std::string_view, char>::format(text, context);
  }
};
