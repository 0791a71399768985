// SPDX-License-Identifier: Apache-2.0
// Lenient decoding of arrays: every element that decodes is kept, in order; every other is skipped.
//
//   std::string skipped;
//   const auto numbers = JSONDecoder().read(R"({"numbers": [1, "x", 3]})", [&](Decoder& decoder) {
//     const auto container = decoder.container<std::string>();
//     return decodeArraySkippingInvalidElements<std::int64_t>(
//         container, "numbers", [&](const SkippedElement& element) { skipped += element.reason.what(); });
//   });
//   numbers.size()          2
//   skipped                 "typeMismatch at numbers[1]: expected a 64-bit integer, found the string \"x\""
//
// An element fails or decodes as a whole, nested arrays and half-read objects included; a null is an element like any
// other. Works on any decoder: JSON, property lists, formats of the caller's. There are two forms of each operation,
// as of decoding itself: throwing, and with `try` giving a Decoded, for a type's own `fromDecoder`.
#pragma once

#include <HavrinFoundation/platform/decoding/decoding.h>

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace havrin {

namespace detail {
// Decodes from any value, null included, and reads nothing of it: the step past an element that did not decode.
struct EmptyDecodable {
  static Decoded<EmptyDecodable> fromDecoder(Decoder&) { return EmptyDecodable(); }
};
}  // namespace detail

/// An element that was skipped: its position, the path of the value that failed, and why it failed.
struct SkippedElement {
  std::size_t index;
  CodingPath path;
  DecodingError reason;
};

/// What is called with each skipped element, before the next one is decoded. What it throws, passes through.
template <class Report>
concept SkippedElementReport = std::invocable<Report&, const SkippedElement&>;

/// The report of callers that want none: bad elements are skipped silently.
struct NoReport {
  void operator()(const SkippedElement&) const {}
};

/// The elements of type Type from the position of `container` to its end, which is its position afterwards. Empty
/// when: no element decodes, or none is left.
/// Throws: what stepping past an element that failed throws; what was decoded until then is lost.
/// Cost: no exception is thrown for a skipped element, unless Type or the format itself throws.
template <Decodable Type, SkippedElementReport Report = NoReport>
[[nodiscard]] std::vector<Type> decodeSkippingInvalidElements(UnkeyedDecodingContainer& container,
                                                              Report&& report = {});
template <Decodable Type, SkippedElementReport Report = NoReport>
[[nodiscard]] Decoded<std::vector<Type>> tryDecodeSkippingInvalidElements(UnkeyedDecodingContainer& container,
                                                                          Report&& report = {});

/// The elements of type Type of the array under `key`.
/// Throws: what opening the array throws (keyNotFound; typeMismatch where there is no array; valueNotFound for null),
/// and what stepping past an element that failed throws.
template <Decodable Type, CodingKeyType Key, SkippedElementReport Report = NoReport>
[[nodiscard]] std::vector<Type> decodeArraySkippingInvalidElements(const KeyedDecodingContainer<Key>& container,
                                                                   const std::type_identity_t<Key>& key,
                                                                   Report&& report = {});
template <Decodable Type, CodingKeyType Key, SkippedElementReport Report = NoReport>
[[nodiscard]] Decoded<std::vector<Type>> tryDecodeArraySkippingInvalidElements(
    const KeyedDecodingContainer<Key>& container, const std::type_identity_t<Key>& key, Report&& report = {});

template <Decodable Type, SkippedElementReport Report>
Decoded<std::vector<Type>> tryDecodeSkippingInvalidElements(UnkeyedDecodingContainer& container, Report&& report) {
  Decoded<std::vector<Type>> elements(std::in_place);
  if (container.isAtEnd()) return elements;
  if (const auto count = container.count()) {
    elements->reserve(detail::reservedElements<Type>(*count - container.currentIndex()));
  }
  constexpr bool kIsReported = !std::same_as<std::remove_cvref_t<Report>, NoReport>;
  do {
    auto element = container.template tryDecode<Type>(kIsReported ? ErrorDetail::full : ErrorDetail::none);
    if (element) {
      elements->push_back(*std::move(element));
      continue;
    }
    if constexpr (kIsReported) {
      element.failure().complete(container.codingPath());
      const DecodingError reason = element.error();
      report(SkippedElement{container.currentIndex(), reason.path(), reason});
    }
    if (auto step = container.template tryDecode<detail::EmptyDecodable>(); !step) {
      elements.fail(std::move(step.failure()));
      break;
    }
  } while (!container.isAtEnd());
  return elements;
}

template <Decodable Type, SkippedElementReport Report>
std::vector<Type> decodeSkippingInvalidElements(UnkeyedDecodingContainer& container, Report&& report) {
  auto elements = tryDecodeSkippingInvalidElements<Type>(container, std::forward<Report>(report));
  if (!elements) elements.failure().complete(container.codingPath());
  return std::move(elements).value();
}

template <Decodable Type, CodingKeyType Key, SkippedElementReport Report>
Decoded<std::vector<Type>> tryDecodeArraySkippingInvalidElements(const KeyedDecodingContainer<Key>& container,
                                                                 const std::type_identity_t<Key>& key,
                                                                 Report&& report) {
  auto array = container.tryNestedUnkeyedContainer(key);
  if (!array) return std::move(array.failure());
  auto elements = tryDecodeSkippingInvalidElements<Type>(*array, std::forward<Report>(report));
  if (!elements) elements.failure().prepend(stringValue(key));
  return elements;
}

template <Decodable Type, CodingKeyType Key, SkippedElementReport Report>
std::vector<Type> decodeArraySkippingInvalidElements(const KeyedDecodingContainer<Key>& container,
                                                     const std::type_identity_t<Key>& key, Report&& report) {
  auto elements = tryDecodeArraySkippingInvalidElements<Type>(container, key, std::forward<Report>(report));
  if (!elements) elements.failure().complete(container.codingPath());
  return std::move(elements).value();
}

}  // namespace havrin
