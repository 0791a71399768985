// Where the tokens of a JSON text begin: the first of the two passes over a document. Internal to the JSON decoder.
#pragma once

#include <HavrinFoundation/platform/documents/decoding_error.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace havrin {
inline namespace platform {

/// Finds the tokens of one text after the other, in memory that it keeps between them.
class JsonStructure {
 public:
  /// Sets of instructions: what every processor has, AVX2, AVX-512. All give the same answers.
  enum class Instructions : std::uint8_t { plain, wide, widest };
  /// The most that this processor has.
  [[nodiscard]] static Instructions best();
  explicit JsonStructure(Instructions instructions = best()) : instructions_(instructions) {}

  /// The offset of every brace, bracket, colon and comma outside strings, of every string's opening quote, and of every
  /// other run of characters that is not white space; then, as one more element, the size of the text. What stands
  /// between two of them is known to be UTF-8, and strings to be closed and free of control characters; nothing else is
  /// checked. Valid until the next call; the caller may write over them. An error (dataCorrupted) when: the text is empty
  /// or white space alone, not UTF-8, or ends inside a string. Throws: std::bad_alloc.
  [[nodiscard]] Decoded<std::span<std::uint32_t>> find(std::string_view text);

 private:
  std::unique_ptr<std::uint32_t[]> tokens_;
  std::size_t capacity_ = 0;
  Instructions instructions_;
};

}  // namespace platform
}  // namespace havrin
