// SPDX-License-Identifier: Apache-2.0
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

/// Finds the tokens of texts. Reuses its buffer from one text to the next.
class JsonStructure {
 public:
  /// Instruction sets: the baseline, AVX2, AVX-512. All give the same results.
  enum class Instructions : std::uint8_t { plain, wide, widest };
  /// The widest set that this processor supports.
  [[nodiscard]] static Instructions best();
  explicit JsonStructure(Instructions instructions = best()) : instructions_(instructions) {}

  /// The offset of every brace, bracket, colon and comma outside strings, of every string's opening quote, and of every
  /// other run of characters that is not white space; then, as a final element, the size of the text. The text has been
  /// checked to be UTF-8, and its strings to be closed and free of control characters; nothing else is checked.
  /// Result: valid until the next call; the caller may overwrite it.
  /// An error (dataCorrupted) when: the text is empty or only white space, is not UTF-8, ends inside a string, or has a
  /// control character in a string.
  /// Throws: std::bad_alloc.
  [[nodiscard]] Decoded<std::span<std::uint32_t>> find(std::string_view text);

 private:
  std::unique_ptr<std::uint32_t[]> tokens_;
  std::size_t capacity_ = 0;
  Instructions instructions_;
};

}  // namespace platform
}  // namespace havrin
