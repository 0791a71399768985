// SPDX-License-Identifier: Apache-2.0
// Decoding from JSON (RFC 8259).
//
//   JSONDecoder json;
//   json.decode<std::vector<int>>("[1, 2e1]").at(1)      20
//   json.tryDecode<std::vector<int>>("[1, 2.5]").error().description()
//           "dataCorrupted at [1]: expected a 32-bit integer, found the number 2.5"
//   json.read(R"({"name": "Nord"})", [](Decoder& document) {
//     return document.container().decode<std::string>("name");
//   })                                                   "Nord"
//
// Strict: UTF-8 only (a byte order mark is skipped), no comments, no trailing commas, nothing after the document, no
// half surrogate pairs in escapes. A malformed document is one error for the whole document. Numbers are kept as text
// until a type decodes them, so a number that fits no type is a single bad value. Of equal keys the first is used. A
// document may be a single scalar.
// Left out: UTF-16 and UTF-32; dates and bytes in strings; key strategies; NaN and infinities.
#pragma once

#include <HavrinFoundation/platform/decoding/decoding.h>
#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

namespace havrin {
inline namespace platform {

/// A decoder of JSON documents, reusable. Keeps its buffers: four bytes for each byte of the largest document.
/// Threads: one at a time. Reentrant: a type may use the decoder that is decoding it.
/// Source: RFC 8259.
class HAVRIN_EXPORT JSONDecoder {
 public:
  JSONDecoder();
  JSONDecoder(JSONDecoder&&) noexcept;
  JSONDecoder& operator=(JSONDecoder&&) noexcept;
  ~JSONDecoder();

  /// Context for the decoded types, available to them as `decoder.userInfo()`.
  UserInfo userInfo;
  /// Larger documents are refused. Choice: 256 MiB; never more than 1 GiB, whatever is set.
  std::size_t maximumSize = std::size_t{256} << 20;

  /// A Type decoded from the whole document. `text` must not change during the call.
  /// Throws: DecodingError; any exception of the caller's types; std::bad_alloc.
  template <Decodable Type>
  [[nodiscard]] Type decode(std::string_view text) {
    return tryDecode<Type>(text).value();
  }
  /// The same, with the error as a value.
  template <Decodable Type>
  [[nodiscard]] Decoded<Type> tryDecode(std::string_view text) {
    const Document document(*this);
    auto source = document.open(text);
    if (!source) return std::move(source.failure());
    Decoder decoder(**source, 0, userInfo);
    return decoder.singleValueContainer().template tryDecode<Type>();
  }
  /// The result of `body`, called with a decoder of the whole document that is valid during the call.
  /// Throws: DecodingError for a malformed document; any exception of `body`.
  template <class Body>
  std::invoke_result_t<Body, Decoder&> read(std::string_view text, Body&& body) {
    const Document document(*this);
    auto source = document.open(text);
    if (!source) source.failure().raise();
    Decoder decoder(**source, 0, userInfo);
    return std::forward<Body>(body)(decoder);
  }

 private:
  struct Memory;

  // Takes the decoder's buffers for one document and returns them.
  class HAVRIN_EXPORT Document {
   public:
    explicit Document(JSONDecoder& decoder);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document();
    [[nodiscard]] Decoded<const DecodingSource*> open(std::string_view text) const;

   private:
    JSONDecoder& decoder_;
    std::unique_ptr<Memory> memory_;
  };

  std::unique_ptr<Memory> memory_;
};

}  // namespace platform
}  // namespace havrin
