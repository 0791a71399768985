// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/real_text.h>

#ifndef __cpp_lib_to_chars

#include <locale.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <string>
#include <system_error>

namespace havrin::detail {

namespace {

float parsed(const char* text, char** end, locale_t locale, float) { return strtof_l(text, end, locale); }
double parsed(const char* text, char** end, locale_t locale, double) { return strtod_l(text, end, locale); }

template <class Real>
std::from_chars_result read(const char* first, const char* last, Real& value) {
  // The decimal point is "." whatever the program's locale is.
  static const locale_t kPlain = newlocale(LC_ALL_MASK, "C", nullptr);
  // What strtod takes beyond std::from_chars: leading blanks, a "+", and hexadecimal numbers behind "0x".
  std::string text(first, std::find_if(first, last, [](char c) { return c == 'x' || c == 'X'; }));
  if (text.find_first_of(" \t\n\v\f\r+") == 0) return {first, std::errc::invalid_argument};

  char* end = nullptr;
  const int before = errno;
  errno = 0;
  const Real number = parsed(text.c_str(), &end, kPlain, Real());
  const bool isOutOfRange = errno == ERANGE && (std::isinf(number) || number == 0);
  errno = before;
  if (end == text.c_str()) return {first, std::errc::invalid_argument};
  if (isOutOfRange) return {first + (end - text.c_str()), std::errc::result_out_of_range};
  value = number;
  return {first + (end - text.c_str()), std::errc()};
}

}  // namespace

std::from_chars_result realFromChars(const char* first, const char* last, double& value) {
  return read(first, last, value);
}

std::from_chars_result realFromChars(const char* first, const char* last, float& value) {
  return read(first, last, value);
}

}  // namespace havrin::detail

#endif
