// Where the tokens of a JSON text begin: the first of the two passes over a document. Internal to the JSON decoder.
#pragma once

#include <HavrinFoundation/platform/documents/decoding_error.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace havrin::inline platform {

/// Finds the tokens of one text after the other, in memory that it keeps between them.
class JsonStructure {
 public:
  JsonStructure();
  JsonStructure(JsonStructure&&) noexcept;
  ~JsonStructure();

  /// The offset of every brace, bracket, colon and comma outside strings, of every string's opening quote, and of every
  /// other run of characters that is not white space; then, as one more element, the size of the text. What stands
  /// between two of them is known to be UTF-8, and strings to be closed and free of control characters; nothing else is
  /// checked. Valid until the next call; the caller may write over them. An error (dataCorrupted) when: the text is empty or white space alone, not
  /// UTF-8, or ends inside a string. Throws: std::bad_alloc.
  [[nodiscard]] Decoded<std::span<std::uint32_t>> find(std::string_view text);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace havrin::inline platform
