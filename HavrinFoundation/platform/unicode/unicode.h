// SPDX-License-Identifier: Apache-2.0
// UTF-8 and UTF-16 text: reading it scalar by scalar, converting, measuring, counting characters.
//
//   utf16("a\xF0\x9F\x91\x8D")                 u"a👍", 3 units
//   utf8(u"\xD83D")                            "\uFFFD", the repaired form of a lone surrogate
//   isWellFormed(std::string_view("\xC0\x80"))  false
//   characterCount("e\u0301\r\n")              2
//
// One rule for ill-formed text, in every facility that reads text: each maximal ill-formed part of UTF-8, and each lone
// surrogate of UTF-16, counts as one U+FFFD. "Maximal part" is the longest beginning of a well-formed sequence at
// that place, at least one byte: F0 9F 91 without its last byte is one part, C0 80 are two.
// Callers that must refuse such text call isWellFormed() first.
//
// Left out: other encodings, case mapping, normalisation, collation, word and line breaks.
// Source: The Unicode Standard, 3.9 (encoding forms, U+FFFD substitution of maximal subparts); UAX #29 (characters).
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// U+FFFD, what an ill-formed part of text counts as.
inline constexpr char32_t kReplacementCharacter = U'\uFFFD';

/// One step through text.
struct Scalar {
  char32_t value = 0;      // kReplacementCharacter where the text is ill-formed
  std::size_t length = 0;  // code units it takes in the text: 1 to 4 in UTF-8, 1 or 2 in UTF-16
  bool wellFormed = true;

  friend constexpr bool operator==(const Scalar&, const Scalar&) = default;
};

}  // namespace platform

namespace detail {
HAVRIN_EXPORT Scalar decodeMultibyte(std::string_view text, std::size_t position) noexcept;
HAVRIN_EXPORT Scalar decodeSurrogate(std::u16string_view text, std::size_t position) noexcept;
}  // namespace detail

inline namespace platform {

/// The scalar that begins at `position`, which must lie inside `text` and at the end of the step before.
///   for (std::size_t i = 0; i < text.size();) { const Scalar s = scalarAt(text, i); i += s.length; ... }
/// Cost: constant.
[[nodiscard]] inline Scalar scalarAt(std::string_view text, std::size_t position) noexcept {
  const auto unit = static_cast<unsigned char>(text[position]);
  if (unit < 0x80) return {unit, 1, true};
  return detail::decodeMultibyte(text, position);
}
[[nodiscard]] inline Scalar scalarAt(std::u16string_view text, std::size_t position) noexcept {
  const char16_t unit = text[position];
  if ((unit & 0xF800) != 0xD800) return {unit, 1, true};
  return detail::decodeSurrogate(text, position);
}

/// Appends one scalar. A surrogate or a value above U+10FFFF is appended as U+FFFD.
HAVRIN_EXPORT void appendScalar(std::string& text, char32_t scalar);
HAVRIN_EXPORT void appendScalar(std::u16string& text, char32_t scalar);

/// How many units at the beginning of `text` are below U+0080.
[[nodiscard]] HAVRIN_EXPORT std::size_t asciiPrefixLength(std::string_view text) noexcept;
[[nodiscard]] HAVRIN_EXPORT std::size_t asciiPrefixLength(std::u16string_view text) noexcept;
[[nodiscard]] inline bool isAscii(std::string_view text) noexcept { return asciiPrefixLength(text) == text.size(); }
[[nodiscard]] inline bool isAscii(std::u16string_view text) noexcept { return asciiPrefixLength(text) == text.size(); }

/// Whether `text` has no ill-formed part.
[[nodiscard]] HAVRIN_EXPORT bool isWellFormed(std::string_view text) noexcept;
[[nodiscard]] HAVRIN_EXPORT bool isWellFormed(std::u16string_view text) noexcept;

/// `text` in the other encoding form, ill-formed parts as U+FFFD.
[[nodiscard]] HAVRIN_EXPORT std::u16string utf16(std::string_view text);
[[nodiscard]] HAVRIN_EXPORT std::string utf8(std::u16string_view text);

/// `text` with its ill-formed parts replaced by U+FFFD.
[[nodiscard]] HAVRIN_EXPORT std::string repaired(std::string_view text);

/// utf16(text).size() and utf8(text).size(), without making them.
[[nodiscard]] HAVRIN_EXPORT std::size_t utf16Length(std::string_view text) noexcept;
[[nodiscard]] HAVRIN_EXPORT std::size_t utf8Length(std::u16string_view text) noexcept;

/// How many characters (extended grapheme clusters) `text` has: "👍🏽", "\r\n" and "e\u0301" are one each.
/// Cost: for text below U+0080 without a carriage return a look at each byte, else a property lookup per scalar.
[[nodiscard]] HAVRIN_EXPORT std::size_t characterCount(std::string_view text) noexcept;

/// How many bytes the first character of `text` takes; 0 for empty text.
[[nodiscard]] HAVRIN_EXPORT std::size_t firstCharacterLength(std::string_view text) noexcept;

}  // namespace platform
}  // namespace havrin
