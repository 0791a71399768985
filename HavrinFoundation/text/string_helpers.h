// SPDX-License-Identifier: Apache-2.0
// Whole ranges of a text, tests of its characters, repetition. As messages: string_helpers_messages.h.
//
//   nsrange("👍")                                                  {0, 2}
//   containsAnyCharacters("abc1", CharacterSet::decimalDigits())  true
//   containsOnlyCharacters("abc1", CharacterSet::letters())       false
//   repeating<NSString>("ab", 3, ", ")                            "ab, ab, ab"
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/base/signed_integer.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/class_names.h>
#include <HavrinFoundation/platform/unicode/character_set.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {

/// From the first byte of `text` up to its end.
[[nodiscard]] constexpr Range<std::size_t> entireRange(std::string_view text) noexcept { return {0, text.size()}; }
Range<std::size_t> entireRange(std::nullptr_t) = delete;

/// The whole of `text` in UTF-16 units: not characters, not scalars.
[[nodiscard]] HAVRIN_EXPORT NSRange nsrange(std::string_view text) noexcept;
NSRange nsrange(std::nullptr_t) = delete;

/// Whether a character of `text` is in `set`; for empty text, false.
[[nodiscard]] inline bool containsAnyCharacters(std::string_view text, const CharacterSet& set) noexcept {
  return set.firstMemberIn(text) != text.size();
}
bool containsAnyCharacters(std::nullptr_t, const CharacterSet&) = delete;

/// Whether every character of `text` is in `set`; for empty text, true.
[[nodiscard]] inline bool containsOnlyCharacters(std::string_view text, const CharacterSet& set) noexcept {
  return set.firstOtherIn(text) == text.size();
}
bool containsOnlyCharacters(std::nullptr_t, const CharacterSet&) = delete;

namespace detail {
HAVRIN_EXPORT std::string repeatedText(std::string_view text, std::int64_t times, std::string_view joinedBy);
}  // namespace detail

/// `text` as often as `times` says, with `joinedBy` between neighbours; an absent separator counts as the empty one.
/// Result: the empty text for no repetition, and for fewer than none.
/// Throws: std::length_error where no string could hold the result.
template <std::derived_from<NSString> ClassType>
[[nodiscard]] std::string repeating(std::string_view text, std::int64_t times,
                                    std::optional<std::string_view> joinedBy) {
  return detail::repeatedText(text, times, joinedBy.value_or(std::string_view()));
}
template <std::derived_from<NSString> ClassType, OtherThanInt64 Type>
std::string repeating(std::string_view, Type, std::optional<std::string_view>) {
  static_assert(kFitsInt64<Type>, "repeating takes an integer that fits std::int64_t; convert the argument explicitly");
  return {};
}

template <std::derived_from<NSString> ClassType>
std::string repeating(std::nullptr_t, std::int64_t times, std::optional<std::string_view> joinedBy) = delete;
// A null pointer is not a text: std::nullopt is the absent separator.
template <std::derived_from<NSString> ClassType, std::same_as<std::nullptr_t> Null>
std::string repeating(std::string_view text, std::int64_t times, Null joinedBy) = delete;

}  // namespace havrin
