// A JSON document as a compact tree of eight-byte nodes over its text, which keeps each number as it is written.
// Internal to the JSON decoder.
//
// The nodes stand in the order of the text. A scalar takes one node; an object or an array takes two (itself, its
// count) followed by its contents; in an object every value is preceded by its key, a string's node.
#pragma once

#include <HavrinFoundation/platform/coding/decoding_error.h>
#include <HavrinFoundation/platform/coding/json_structure.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace havrin::inline platform {

class JsonTree {
 public:
  /// Documents larger than this do not fit the nodes.
  static constexpr std::size_t kLargestText = (std::size_t{1} << 30) - 1;
  static constexpr std::size_t kDeepestNesting = 512;

  /// A value or a key, by its number. The outermost value is 0.
  using Node = std::uint32_t;

  /// Reads `text` whole, and refers to it. An error (dataCorrupted, with line and column) when: it is no JSON as RFC 8259
  /// has it, nests deeper than kDeepestNesting, or an escape in a string writes half a surrogate pair.
  [[nodiscard]] Decoded<void> read(std::string_view text);

  /// The first character of the node, which tells its kind: { [ " t f n - or a digit.
  [[nodiscard]] char kindOf(Node node) const { return text_.data()[nodes_[node].begin]; }
  /// The text of a number, a string (between its quotes, escapes as written), or true, false and null.
  [[nodiscard]] std::string_view textOf(Node node) const {
    const Entry entry = nodes_[node];
    const char* const begin = text_.data() + entry.begin;
    return {begin + (*begin == '"' ? 1 : 0), entry.word & kMask};
  }
  [[nodiscard]] bool hasEscapes(Node string) const { return (nodes_[string].word & kEscapes) != 0; }
  /// The string's characters, escapes resolved.
  [[nodiscard]] std::string unescaped(Node string) const;
  /// Whether the string `string` says `text`.
  [[nodiscard]] bool says(Node string, std::string_view text) const {
    const Entry entry = nodes_[string];
    if (entry.word == text.size()) return haveEqualBytes(text_.data() + entry.begin + 1, text.data(), text.size());
    return (entry.word & kEscapes) != 0 && saysInEscapes(string, text);
  }

  /// How many values an array holds, or how many keys an object.
  [[nodiscard]] std::size_t countOf(Node container) const { return nodes_[container + 1].begin; }
  [[nodiscard]] static Node firstIn(Node container) { return container + 2; }
  [[nodiscard]] Node endOf(Node container) const { return nodes_[container].word & kMask; }
  /// The node behind `value` and everything in it.
  [[nodiscard]] Node after(Node value) const {
    // A branch, not a choice of two values: walking an object then need not wait for each node in turn.
    const std::uint32_t word = nodes_[value].word;
    if ((word & kContainer) != 0) [[unlikely]]
      return word & kMask;
    return value + 1;
  }

 private:
  friend class JsonTreeBuilder;

  [[nodiscard]] bool saysInEscapes(Node string, std::string_view text) const;

  // Keys are short: two overlapping words beat a call.
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

  // Where the node's text begins; and the length of that text, or the node behind the container, with a mark.
  struct Entry {
    std::uint32_t begin;
    std::uint32_t word;
  };
  static constexpr std::uint32_t kContainer = 0x80000000;
  static constexpr std::uint32_t kEscapes = 0x40000000;
  static constexpr std::uint32_t kMask = 0x3FFFFFFF;

  std::string_view text_;
  std::unique_ptr<Entry[]> nodes_;
  std::size_t capacity_ = 0;
  JsonStructure structure_;
};

}  // namespace havrin::inline platform
