// SPDX-License-Identifier: Apache-2.0
// Decoding from property lists, in the binary or the XML form.
//
//   const PropertyListDecoder decoder;
//   const PropertyList numbers(PropertyList::Array{PropertyList(1), PropertyList(2.0)});
//   decoder.decode<std::vector<int>>(numbers).at(1)      2
//   decoder.tryDecode<int>(PropertyList("two")).error().description()
//           "typeMismatch at the top level: expected a 32-bit integer, found the string \"two\""
//
// The rules are those of every decoder: a real with a whole value is accepted for an integer, a boolean is not accepted
// for a number. Property lists have no null. Their dates, bytes and UIDs are typeMismatch for every built-in type.
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

/// A decoder of property lists, without state. Threads: any number at a time, as long as `userInfo` does not change.
class HAVRIN_EXPORT PropertyListDecoder {
 public:
  /// Context for the decoded types, available to them as `decoder.userInfo()`.
  UserInfo userInfo;

  /// A Type decoded from the whole property list.
  /// Throws: DecodingError, for malformed bytes with the line or byte; any exception of the caller's types.
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
  /// The result of `body`, called with a decoder of the whole property list that is valid during the call.
  /// Throws: DecodingError for malformed bytes; any exception of `body`.
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
