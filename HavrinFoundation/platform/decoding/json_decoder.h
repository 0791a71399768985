// Decoding from JSON (RFC 8259).
//
//   auto stations = JSONDecoder().decode<std::vector<Station>>(text);
//
//   auto stations = JSONDecoder().read(text, [](Decoder& document) {
//     return decodeArraySkippingInvalidElements<Station>(document.container(), "stations");
//   });
//
// Strict: UTF-8 only (a byte order mark is skipped), no comments, no trailing commas, nothing after the document; half a
// surrogate pair in an escape is refused. A malformed document is one error for the whole. A number is kept as it is
// written until a type asks for it, so one that fits no type is one bad value and no more. Of equal keys the first
// counts. A document of one scalar is a document.
// Left out: UTF-16 and UTF-32; dates and bytes inside texts; key strategies; numbers that are no numbers.
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

/// Decodes JSON documents, one after the other, in memory that it keeps: some four bytes for each byte of the largest
/// document. Threads: one at a time. Decoding may be nested: a type may use the decoder that is decoding it.
/// Source: RFC 8259.
class HAVRIN_EXPORT JSONDecoder {
 public:
  JSONDecoder();
  JSONDecoder(JSONDecoder&&) noexcept;
  JSONDecoder& operator=(JSONDecoder&&) noexcept;
  ~JSONDecoder();

  /// What the types that are decoded get as `decoder.userInfo()`.
  UserInfo userInfo;
  /// Larger documents are refused. Choice: 256 MiB; never more than 1 GiB, whatever is set.
  std::size_t maximumSize = std::size_t{256} << 20;

  /// A Type from the whole document. `text` must stay as it is during the call.
  /// Throws: DecodingError; whatever a type of the caller's throws; std::bad_alloc.
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
  /// What `body` gives for a decoder of the whole document, which is valid until `body` returns.
  /// Throws: DecodingError for a malformed document; whatever `body` throws.
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

  // Borrows the decoder's memory for one document, and gives it back.
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
