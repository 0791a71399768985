// One value of decoded data, about to become a value of the caller's. Comes with decoding.h.
//
//   static Decoded<Station> fromDecoder(Decoder& decoder) {
//     auto container = decoder.tryContainer();
//     if (!container) return container.error();
//     ...
//   }
#pragma once

#include <HavrinFoundation/platform/decoding/decoding_source.h>
#include <HavrinFoundation/platform/documents/coding_path.h>
#include <HavrinFoundation/platform/documents/decoding_error.h>
#include <HavrinFoundation/platform/export.h>

#include <any>
#include <cstddef>
#include <functional>
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

/// What the caller of a decoder tells the types that are decoded.
using UserInfo = std::map<std::string, std::any, std::less<>>;

/// Decodes a ValueType from what `decoder` stands on: every other operation ends here.
template <class ValueType>
[[nodiscard]] Decoded<ValueType> decodeValue(Decoder& decoder);

}  // namespace platform

namespace detail {

class KeyedContainerCore;

template <class ValueType>
inline constexpr bool kIsOptional = false;
template <class ValueType>
inline constexpr bool kIsOptional<std::optional<ValueType>> = true;

// One link of the path to the value that is being decoded: it stands on the stack of the call that decodes it.
struct CodingStep {
  const CodingStep* parent = nullptr;
  std::string_view name;
  std::int64_t index = -1;  // the position in an array; negative: the step is a name
  const UserInfo* userInfo = nullptr;
};

[[nodiscard]] HAVRIN_EXPORT CodingPath pathOf(const CodingStep* step);

// A step that a container holds itself, because it outlives the call that made it.
struct OwnedStep {
  std::string name;
  std::shared_ptr<const OwnedStep> parentOwner;
  CodingStep step;
};

// Where a container stands: its step, and what keeps the step.
struct Place {
  const CodingStep* step = nullptr;
  std::shared_ptr<const OwnedStep> owner;

  [[nodiscard]] HAVRIN_EXPORT Place inside(std::string_view name) const;
  [[nodiscard]] HAVRIN_EXPORT Place inside(std::size_t index) const;
};

// What `body` gives, or the exception that leaves it as an error: for types and formats that throw.
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

// Why `value` is not the container that is wanted.
[[nodiscard]] HAVRIN_EXPORT ErrorHolder notContainer(const DecodingSource& source, DecodingSource::Value value,
                                                     ScalarTarget::Type wanted, ErrorDetail detail);

}  // namespace detail

inline namespace platform {

/// One value of the data, about to be decoded: what a type of the caller's gets.
class HAVRIN_EXPORT Decoder {
 public:
  /// A decoder of one value of `source`, which must outlive it, as must `userInfo`.
  Decoder(const DecodingSource& source, DecodingSource::Value value, const UserInfo& userInfo = noUserInfo());
  Decoder(const DecodingSource& source, DecodingSource::Value value, detail::Place place,
          ErrorDetail detail = ErrorDetail::full)
      : source_(&source), value_(value), place_(std::move(place)), errorDetail_(detail) {}

  [[nodiscard]] CodingPath codingPath() const { return detail::pathOf(place_.step); }
  [[nodiscard]] const UserInfo& userInfo() const { return *place_.step->userInfo; }

  /// The value as an object. Throws: typeMismatch, or valueNotFound for null.
  template <CodingKeyType Key = std::string_view>
  [[nodiscard]] KeyedDecodingContainer<Key> container() const;
  template <CodingKeyType Key = std::string_view>
  [[nodiscard]] Decoded<KeyedDecodingContainer<Key>> tryContainer() const;

  /// The value as an array, at its first element. Throws: typeMismatch, or valueNotFound for null.
  [[nodiscard]] UnkeyedDecodingContainer unkeyedContainer() const;
  [[nodiscard]] Decoded<UnkeyedDecodingContainer> tryUnkeyedContainer() const;

  /// The value as it is.
  [[nodiscard]] SingleValueDecodingContainer singleValueContainer();

  [[nodiscard]] const DecodingSource& source() const { return *source_; }
  [[nodiscard]] DecodingSource::Value value() const { return value_; }
  [[nodiscard]] bool isNull() const { return source_->kind(value_) == Found::null; }
  [[nodiscard]] const detail::Place& place() const { return place_; }
  // What the errors of this decoder and its containers tell: everything, as soon as code of the caller's may see them.
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
  /// Whether null stands here.
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
