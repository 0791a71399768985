// Decoding from property lists, in the binary form or as XML.
//
//   auto settings = PropertyListDecoder().decode<Settings>(bytes);
//   auto settings = PropertyListDecoder().decode<Settings>(list);       a PropertyList that was read already
//
// The rules are those of every decoder: a real that is a whole number is an integer, a boolean is no number. A property
// list has no null. What property lists hold beyond scalars, arrays and dictionaries (dates, bytes, references) is
// typeMismatch to every built-in type.
// Left out: dates and bytes as built-in types.
#pragma once

#include <HavrinFoundation/platform/decoding/decoding.h>
#include <HavrinFoundation/platform/documents/property_list.h>
#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <span>
#include <type_traits>
#include <utility>

namespace havrin {
inline namespace platform {

/// Decodes property lists. Keeps nothing between them. Threads: any number at a time, while `userInfo` stays as it is.
class HAVRIN_EXPORT PropertyListDecoder {
 public:
  /// What the types that are decoded get as `decoder.userInfo()`.
  UserInfo userInfo;

  /// A Type from the whole property list.
  /// Throws: DecodingError, for malformed bytes with the place in its text; whatever a type of the caller's throws.
  template <Decodable Type>
  [[nodiscard]] Type decode(std::span<const std::byte> bytes) const {
    return tryDecode<Type>(bytes).value();
  }
  template <Decodable Type>
  [[nodiscard]] Type decode(const PropertyList& list) const {
    return tryDecode<Type>(list).value();
  }
  /// The same, with the error as a value.
  template <Decodable Type>
  [[nodiscard]] Decoded<Type> tryDecode(std::span<const std::byte> bytes) const {
    const auto list = listIn(bytes);
    if (!list) return list.error();
    return tryDecode<Type>(*list);
  }
  template <Decodable Type>
  [[nodiscard]] Decoded<Type> tryDecode(const PropertyList& list) const {
    return read(list, [](Decoder& decoder) { return decoder.singleValueContainer().tryDecode<Type>(); });
  }
  /// What `body` gives for a decoder of the whole property list, which is valid until `body` returns.
  /// Throws: DecodingError for malformed bytes; whatever `body` throws.
  template <class Body>
  std::invoke_result_t<Body, Decoder&> read(std::span<const std::byte> bytes, Body&& body) const {
    return read(listIn(bytes).value(), std::forward<Body>(body));
  }
  template <class Body>
  std::invoke_result_t<Body, Decoder&> read(const PropertyList& list, Body&& body) const {
    Decoder decoder = decoderOf(list, userInfo);
    return std::forward<Body>(body)(decoder);
  }

 private:
  [[nodiscard]] static Decoded<PropertyList> listIn(std::span<const std::byte> bytes);
  [[nodiscard]] static Decoder decoderOf(const PropertyList& list, const UserInfo& userInfo);
};

}  // namespace platform
}  // namespace havrin
