// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/string_helpers.h>

#include <HavrinFoundation/platform/unicode/unicode.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace havrin {

NSRange nsrange(std::string_view text) noexcept { return {0, utf16Length(text)}; }

std::string detail::repeatedText(std::string_view text, std::int64_t times, std::string_view joinedBy) {
  if (times <= 0) return {};
  const std::size_t period = text.size() + joinedBy.size();
  std::string result;
  if (period == 0) return result;
  if (static_cast<std::uint64_t>(times) > result.max_size() / period) {
    throw std::length_error("repeating: the result does not fit in a string");
  }
  const std::size_t size = period * static_cast<std::size_t>(times) - joinedBy.size();
  result.reserve(size);
  result.append(text);
  if (size > text.size()) result.append(joinedBy);
  // The text so far is whole periods: it is doubled until the last copies are only a part of it.
  while (result.size() < size) result.append(result, 0, std::min(result.size(), size - result.size()));
  return result;
}

}  // namespace havrin
