// SPDX-License-Identifier: Apache-2.0
// One value of decoded data, about to become a value of the caller's. Comes with decoding.h.
//
//   struct Title {
//     std::string text;
//     static Decoded<Title> fromDecoder(Decoder& decoder) {
//       auto container = decoder.tryContainer();
//       if (!container) return container.error();
//       auto text = container->tryDecode<std::string>("title");
//       if (!text) return text.error();
//       return Title{*std::move(text)};
//     }
//   };
//   JSONDecoder().decode<Title>(R"({"title": "Rain"})").text          "Rain"
//   JSONDecoder().tryDecode<Title>("[]").error().description()
//           "typeMismatch at the top level: expected an object, found an array"
#pragma once

#include <HavrinFoundation/platform/decoding/decoding_source.h>
#include <HavrinFoundation/platform/documents/coding_path.h>
#include <HavrinFoundation/platform/documents/decoding_error.h>
#include <HavrinFoundation/platform/export.h>

#include <any>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

class Decoder;
template <CodingKeyType Key>
class KeyedDecodingContainer;
class SingleValueDecodingContainer;
class UnkeyedDecodingContainer;

/// Context that the caller of a decoder passes to the types that are decoded.
using UserInfo = std::map<std::string, std::any, std::less<>>;

/// Decodes a ValueType from the value of `decoder`. All other operations call this.
template <class ValueType>
[[nodiscard]] Decoded<ValueType> decodeValue(Decoder& decoder);

}  // namespace platform

namespace detail {

class KeyedContainerCore;

template <class ValueType>
inline constexpr bool kIsOptional = false;
template <class ValueType>
inline constexpr bool kIsOptional<std::optional<ValueType>> = true;

// One link of the path to the value that is being decoded, on the stack of the call that decodes it.
struct CodingStep {
  const CodingStep* parent = nullptr;
  std::string_view name;
  std::int64_t index = -1;  // the index in an array; negative if the step is a name
  const UserInfo* userInfo = nullptr;
};

[[nodiscard]] HAVRIN_EXPORT CodingPath pathOf(const CodingStep* step);

// A step owned by a container, which outlives the call that made it.
struct OwnedStep {
  std::string name;
  std::shared_ptr<const OwnedStep> parentOwner;
  CodingStep step;
};

// The position of a container in the document: its step and the owner of the step.
struct Place {
  const CodingStep* step = nullptr;
  std::shared_ptr<const OwnedStep> owner;

  [[nodiscard]] HAVRIN_EXPORT Place inside(std::string_view name) const;
  [[nodiscard]] HAVRIN_EXPORT Place inside(std::size_t index) const;
};

// The result of `body`, with an exception turned into an error: types and formats may throw.
template <class Body>
auto captured(Body&& body) -> std::invoke_result_t<Body> {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    return ErrorHolder::fromCurrentException();
  }
}

template <class ValueType>
ValueType valueOrThrow(Decoded<ValueType>&& outcome, const CodingStep* step) {
  if (!outcome) outcome.failure().complete(pathOf(step));
  return std::move(outcome).value();
}

// A document that is null.
[[nodiscard]] HAVRIN_EXPORT const DecodingSource& nullSource();

// The error for a value that is not the expected container.
[[nodiscard]] HAVRIN_EXPORT ErrorHolder notContainer(const DecodingSource& source, DecodingSource::Value value,
                                                     ScalarTarget::Type wanted, ErrorDetail detail);

}  // namespace detail

inline namespace platform {

/// Access to one value of the document, passed to `fromDecoder` of the caller's type. Valid during that call.
/// Threads: one.
class HAVRIN_EXPORT Decoder {
 public:
  /// A decoder of one value of `source`, which must outlive it, as must `userInfo`.
  Decoder(const DecodingSource& source, DecodingSource::Value value, const UserInfo& userInfo = noUserInfo());
  Decoder(const DecodingSource& source, DecodingSource::Value value, detail::Place place,
          ErrorDetail detail = ErrorDetail::full)
      : source_(&source), value_(value), place_(std::move(place)), errorDetail_(detail) {}

  [[nodiscard]] CodingPath codingPath() const { return detail::pathOf(place_.step); }
  [[nodiscard]] const UserInfo& userInfo() const { return *place_.step->userInfo; }

  /// The value as an object. Throws: DecodingError, typeMismatch or, for null, valueNotFound.
  template <CodingKeyType Key = std::string_view>
  [[nodiscard]] KeyedDecodingContainer<Key> container() const;
  template <CodingKeyType Key = std::string_view>
  [[nodiscard]] Decoded<KeyedDecodingContainer<Key>> tryContainer() const;

  /// The value as an array, at its first element. Throws: DecodingError, typeMismatch or, for null, valueNotFound.
  [[nodiscard]] UnkeyedDecodingContainer unkeyedContainer() const;
  [[nodiscard]] Decoded<UnkeyedDecodingContainer> tryUnkeyedContainer() const;

  /// The value, to be decoded as a whole.
  [[nodiscard]] SingleValueDecodingContainer singleValueContainer();

  [[nodiscard]] const DecodingSource& source() const { return *source_; }
  [[nodiscard]] DecodingSource::Value value() const { return value_; }
  [[nodiscard]] bool isNull() const { return source_->kind(value_) == Found::null; }
  [[nodiscard]] const detail::Place& place() const { return place_; }
  // The detail of errors of this decoder and its containers: full as soon as code of the caller may see them.
  [[nodiscard]] ErrorDetail errorDetail() const { return errorDetail_; }
  [[nodiscard]] Decoder& describingErrors() {
    errorDetail_ = ErrorDetail::full;
    return *this;
  }

 private:
  static const UserInfo& noUserInfo();

  const DecodingSource* source_;
  DecodingSource::Value value_;
  detail::Place place_;
  ErrorDetail errorDetail_ = ErrorDetail::full;
};

/// One value, to be decoded as a whole.
class HAVRIN_EXPORT SingleValueDecodingContainer {
 public:
  explicit SingleValueDecodingContainer(Decoder& decoder) : decoder_(&decoder) {}

  [[nodiscard]] CodingPath codingPath() const { return decoder_->codingPath(); }
  /// Whether the value is null.
  [[nodiscard]] bool decodeNil() const { return decoder_->isNull(); }

  template <class ValueType>
  [[nodiscard]] ValueType decode() const {
    auto outcome = tryDecode<ValueType>();
    if (!outcome) outcome.failure().complete(codingPath());
    return std::move(outcome).value();
  }
  template <class ValueType>
  [[nodiscard]] Decoded<ValueType> tryDecode() const {
    return detail::captured([this] { return decodeValue<ValueType>(*decoder_); });
  }

 private:
  Decoder* decoder_;
};

}  // namespace platform
}  // namespace havrin
