// SPDX-License-Identifier: Apache-2.0
// A JSON document as the offsets of its tokens in the text. Numbers stay text until they are decoded, so that no digit
// is lost. Internal to the JSON decoder.
//
//   {"a": [1, 2], "b": 3}      tokens { "a" : [ 1 , 2 ] , "b" : 3 }, by number from 0
//   afterValue(3) is 9         the comma after the array: an opening bracket stores the token that closes it
#pragma once

#include <HavrinFoundation/platform/documents/decoding_error.h>
#include <HavrinFoundation/platform/documents/json_structure.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// The tokens of a checked document: a view, valid until the buffer that made it reads another.
class JsonTokens {
 public:
  /// Documents larger than this are refused: an offset and two marks share 32 bits.
  static constexpr std::size_t kLargestText = (std::size_t{1} << 30) - 1;
  static constexpr std::size_t kDeepestNesting = 512;

  /// A token, by its number. The outermost value begins with token 0.
  using Token = std::uint32_t;

  /// The first character of a value, which determines its kind: { [ " t f n - or a digit.
  [[nodiscard]] char kindOf(Token value) const {
    const std::uint32_t word = tokens_[value];
    if ((word & kContainer) != 0) return (word & kObject) != 0 ? '{' : '[';
    return text_.data()[word & kMask];
  }
  /// The text of a number, true, false or null.
  [[nodiscard]] std::string_view textOf(Token scalar) const {
    const char* const begin = text_.data() + tokens_[scalar];
    return {begin, static_cast<std::size_t>(endBefore(scalar + 1) - begin)};
  }
  [[nodiscard]] const char* beginOf(Token scalar) const { return text_.data() + tokens_[scalar]; }
  /// The number of bytes from the start of a scalar to the end of the document.
  [[nodiscard]] std::size_t bytesFrom(Token scalar) const { return text_.size() - tokens_[scalar]; }
  /// The text of a string between its quotes, with escapes unresolved.
  [[nodiscard]] std::string_view insideOf(Token string) const {
    const char* const begin = text_.data() + (tokens_[string] & kMask) + 1;
    return {begin, static_cast<std::size_t>(endBefore(string + 1) - 1 - begin)};
  }
  [[nodiscard]] bool isContainer(Token value) const { return (tokens_[value] & kContainer) != 0; }
  /// Whether a value is a string without escapes.
  [[nodiscard]] bool isPlainString(Token value) const {
    return (tokens_[value] & (kContainer | kEscapes)) == 0 && text_.data()[tokens_[value]] == '"';
  }
  [[nodiscard]] bool hasEscapes(Token string) const { return (tokens_[string] & kEscapes) != 0; }
  /// The string's characters, escapes resolved.
  [[nodiscard]] std::string unescaped(Token string) const;
  /// Whether a string, with escapes resolved, equals `text`.
  [[nodiscard]] bool says(Token string, std::string_view text) const {
    if (hasEscapes(string)) [[unlikely]]
      return unescaped(string) == text;
    // The bounds check is enough: the closing quote lies before the next token.
    const std::size_t end = tokens_[string] + 1 + text.size();
    return end < tokens_[string + 1] && text_.data()[end] == '"' &&
           haveEqualBytes(text_.data() + end - text.size(), text.data(), text.size());
  }

  /// The first value of an array or first key of an object; the closing bracket if it is empty.
  [[nodiscard]] static Token firstIn(Token container) { return container + 1; }
  /// The closing bracket.
  [[nodiscard]] Token endOf(Token container) const { return tokens_[container] & kMask; }
  /// The comma or closing bracket that follows `value`.
  [[nodiscard]] Token afterValue(Token value) const {
    const std::uint32_t word = tokens_[value];
    if ((word & kContainer) != 0) return (word & kMask) + 1;
    return value + 1;
  }
  /// The next value or key after `value` in a container whose closing bracket is `end`; `end` if there is none.
  [[nodiscard]] Token next(Token value, Token end) const {
    const Token after = afterValue(value);
    return after == end ? end : after + 1;
  }
  [[nodiscard]] static Token valueOf(Token key) { return key + 2; }
  /// The number of values of an array. Cost: linear if the first value is a scalar, otherwise constant.
  [[nodiscard]] std::size_t countOf(Token array) const;

 private:
  friend class JsonReading;
  friend class JsonTokenBuffer;

  static bool isWhiteSpace(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

  // The end of the text before `token`, without white space. `token` is not an opening bracket, whose offset is gone.
  [[nodiscard]] const char* endBefore(Token token) const {
    const char* end = text_.data() + tokens_[token];
    while (isWhiteSpace(end[-1])) --end;
    return end;
  }

  // Keys are short: comparing two overlapping words is faster than calling memcmp.
  [[nodiscard]] static bool haveEqualBytes(const char* left, const char* right, std::size_t size) {
    const auto differ = [&]<class Word>(Word, std::size_t at) {
      Word a;
      Word b;
      std::memcpy(&a, left + at, sizeof a);
      std::memcpy(&b, right + at, sizeof b);
      return a != b;
    };
    if (size > 16) return std::memcmp(left, right, size) == 0;
    if (size >= 8) return !differ(std::uint64_t{}, 0) && !differ(std::uint64_t{}, size - 8);
    if (size >= 4) return !differ(std::uint32_t{}, 0) && !differ(std::uint32_t{}, size - 4);
    return std::equal(left, left + size, right);
  }

  // A token is an offset in the text. A string with escapes has a flag; an opening bracket has a flag and stores the
  // closing token in place of its offset. The offset of a comma is needed only as the end of a scalar before it, so the
  // comma after a container that is the first of several values stores their count instead.
  static constexpr std::uint32_t kContainer = 0x80000000;
  static constexpr std::uint32_t kObject = 0x40000000;
  static constexpr std::uint32_t kEscapes = 0x40000000;
  static constexpr std::uint32_t kMask = 0x3FFFFFFF;

  std::string_view text_;
  const std::uint32_t* tokens_ = nullptr;
};

/// Reads documents, one after the other, into the same memory.
class JsonTokenBuffer {
 public:
  /// Checks and indexes the whole of `text`, which must outlive its use here.
  /// An error (dataCorrupted, with line and byte, from 1) when: `text` is not JSON, is larger than
  /// JsonTokens::kLargestText, is nested deeper than JsonTokens::kDeepestNesting, or an escape in a string is half a
  /// surrogate pair.
  /// Source: RFC 8259.
  [[nodiscard]] Decoded<JsonTokens> read(std::string_view text);

 private:
  JsonStructure structure_;
};

}  // namespace platform
}  // namespace havrin
