// SPDX-License-Identifier: Apache-2.0
// The values of an array, decoded one after the other. Included by decoding.h.
//
//   JSONDecoder json;
//   json.read("[1, 2, 39]", [](Decoder& decoder) {
//     auto numbers = decoder.unkeyedContainer();
//     std::int64_t sum = 0;
//     while (!numbers.isAtEnd()) sum += numbers.decode<std::int64_t>();
//     return sum;
//   })                                                 42
#pragma once

#include <HavrinFoundation/platform/decoding/decoder.h>

#include <cstddef>
#include <optional>
#include <utility>

namespace havrin {
inline namespace platform {

/// The values of an array, with a position that moves past a value only when the value was decoded: a failure, also of
/// a container or type nested in it, leaves the position where it was. At the end every decoding is valueNotFound.
class HAVRIN_EXPORT UnkeyedDecodingContainer {
 public:
  // Of a value that is an array.
  UnkeyedDecodingContainer(const DecodingSource& source, DecodingSource::Value array, detail::Place place,
                           ErrorDetail detail = ErrorDetail::full)
      : source_(&source), cursor_{array, source.first(array)}, place_(std::move(place)), errorDetail_(detail) {}
  [[nodiscard]] static Decoded<UnkeyedDecodingContainer> of(const Decoder& decoder);

  [[nodiscard]] CodingPath codingPath() const { return detail::pathOf(place_.step); }
  /// The number of values in the array. Empty when: the format does not know it.
  [[nodiscard]] std::optional<std::size_t> count() const { return source_->count(cursor_.array); }
  [[nodiscard]] bool isAtEnd() const {
    isBeforeEnd_ = !source_->isAtEnd(cursor_);
    return !isBeforeEnd_;
  }
  [[nodiscard]] std::size_t currentIndex() const { return cursor_.index; }

  /// Whether the value at the position is null; if so, moves past it. Throws: valueNotFound at the end of the array.
  [[nodiscard]] bool decodeNil() { return orThrow(tryDecodeNil()); }
  [[nodiscard]] Decoded<bool> tryDecodeNil();

  template <class Type>
  [[nodiscard]] Type decode() {
    return orThrow(tryDecode<Type>());
  }
  template <class Type>
  [[nodiscard]] Decoded<Type> tryDecode() {
    return tryDecode<Type>(errorDetail_);
  }
  /// The same, with the given detail of errors.
  template <class Type>
  [[nodiscard]] Decoded<Type> tryDecode(ErrorDetail detail);

  // Decodes into `scalar`; the error, or nothing.
  template <DecodableScalar Type>
  [[nodiscard]] detail::ErrorHolder readInto(Type& scalar, ErrorDetail errorDetail);

  /// The value at the position. Empty when: it is null (the position moves past it), or the array has ended.
  /// Throws: typeMismatch; dataCorrupted.
  template <class Type>
  [[nodiscard]] std::optional<Type> decodeIfPresent() {
    return orThrow(tryDecodeIfPresent<Type>());
  }
  template <class Type>
  [[nodiscard]] Decoded<std::optional<Type>> tryDecodeIfPresent() {
    if (isAtEnd()) return std::optional<Type>();
    return tryDecode<std::optional<Type>>();
  }

  /// The object at the position, which moves past it. Throws: valueNotFound for null or at the end; typeMismatch.
  template <CodingKeyType Key = std::string_view>
  [[nodiscard]] KeyedDecodingContainer<Key> nestedContainer() {
    return orThrow(tryNestedContainer<Key>());
  }
  template <CodingKeyType Key = std::string_view>
  [[nodiscard]] Decoded<KeyedDecodingContainer<Key>> tryNestedContainer();

  /// The array at the position, which moves past it. Throws: valueNotFound for null or at the end; typeMismatch.
  [[nodiscard]] UnkeyedDecodingContainer nestedUnkeyedContainer() { return orThrow(tryNestedUnkeyedContainer()); }
  [[nodiscard]] Decoded<UnkeyedDecodingContainer> tryNestedUnkeyedContainer();

  /// A decoder of the value at the position, which moves past it. Throws: valueNotFound at the end.
  [[nodiscard]] Decoder superDecoder() { return orThrow(trySuperDecoder()); }
  [[nodiscard]] Decoded<Decoder> trySuperDecoder();

 private:
  // The result of `use`, which must advance the position; an error gets the index prepended to its path.
  template <class Type, class Use>
  [[nodiscard]] Decoded<Type> passing(Use&& use);
  // The result of `open` for a decoder of the value at the position; then advances.
  template <class Type, class Open>
  [[nodiscard]] Decoded<Type> opening(Open&& open);
  [[nodiscard]] Decoded<detail::KeyedContainerCore> nestedCore();
  [[nodiscard]] Decoded<void> advance() {
    auto moved = source_->advance(cursor_);
    if (moved) ++cursor_.index;
    return moved;
  }

  template <class Type>
  [[nodiscard]] Type orThrow(Decoded<Type>&& outcome) const {
    return detail::valueOrThrow(std::move(outcome), place_.step);
  }

  const DecodingSource* source_;
  DecodingSource::ArrayCursor cursor_;
  detail::Place place_;
  ErrorDetail errorDetail_ = ErrorDetail::full;
  mutable bool isBeforeEnd_ = false;  // known from the last `isAtEnd`, for the position it was asked at
};

template <class Type, class Use>
Decoded<Type> UnkeyedDecodingContainer::passing(Use&& use) {
  Decoded<Type> outcome = detail::captured([&]() -> Decoded<Type> {
    if (!isBeforeEnd_ && isAtEnd()) return DecodingError::valueNotFound("a value", Found::nothing);
    isBeforeEnd_ = false;
    return use();
  });
  if (!outcome && outcome.failure().isDescribed()) outcome.failure().prepend(currentIndex());
  return outcome;
}

// Not by way of `passing`: a loop over scalars spends most of its time here.
template <DecodableScalar Type>
detail::ErrorHolder UnkeyedDecodingContainer::readInto(Type& scalar, ErrorDetail errorDetail) {
  ScalarTarget target(scalar, errorDetail);
  try {
    if (!isBeforeEnd_ && isAtEnd()) {
      target.fail(DecodingError::valueNotFound("a value", Found::nothing));
    } else {
      isBeforeEnd_ = false;
      source_->readElement(cursor_, target);
    }
  } catch (...) {
    target.fail(detail::ErrorHolder::fromCurrentException());
  }
  if (!target.failure()) [[likely]] {
    ++cursor_.index;
    return {};
  }
  target.failure().prepend(currentIndex());
  return std::move(target.failure());
}

template <class Type>
Decoded<Type> UnkeyedDecodingContainer::tryDecode(ErrorDetail detail) {
  if constexpr (DecodableScalar<Type>) {
    Decoded<Type> scalar(std::in_place);
    if (auto failure = readInto(*scalar, detail)) scalar.fail(std::move(failure));
    return scalar;
  } else {
    return passing<Type>([this, detail]() -> Decoded<Type> {
      const auto element = source_->current(cursor_);
      if (!element) return element.error();
      const detail::CodingStep step{place_.step, {}, static_cast<std::int64_t>(currentIndex()), place_.step->userInfo};
      Decoder decoder(*source_, *element, detail::Place{&step, nullptr}, detail);
      Decoded<Type> value = decodeValue<Type>(decoder);
      if (!value) return value;
      if (auto moved = advance(); !moved) value.fail(std::move(moved.failure()));
      return value;
    });
  }
}

}  // namespace platform
}  // namespace havrin
