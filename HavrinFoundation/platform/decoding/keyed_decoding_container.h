// SPDX-License-Identifier: Apache-2.0
// The values of an object, looked up by key. Included by decoding.h.
//
//   JSONDecoder json;
//   json.read(R"({"name": "Nord", "song": null})", [](Decoder& decoder) {
//     const auto station = decoder.container();
//     return station.decode<std::string>("name") + station.decodeIfPresent<std::string>("song").value_or(" off air");
//   })                                                                  "Nord off air"
//   json.read(R"({"plays": [3, 4]})", [](Decoder& decoder) {
//     return decoder.container().nestedUnkeyedContainer("plays").decode<int>();
//   })                                                                  3
#pragma once

#include <HavrinFoundation/platform/decoding/decoder.h>
#include <HavrinFoundation/platform/decoding/unkeyed_decoding_container.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace havrin {

namespace detail {

// A keyed container with text keys, shared by all key types. Paths of its errors start inside this object.
class HAVRIN_EXPORT KeyedContainerCore {
 public:
  // Of a value that is an object.
  KeyedContainerCore(const DecodingSource& source, DecodingSource::Value object, Place place,
                     ErrorDetail detail = ErrorDetail::full)
      : source_(&source), cursor_{object}, place_(std::move(place)), errorDetail_(detail) {}
  [[nodiscard]] static Decoded<KeyedContainerCore> of(const Decoder& decoder) {
    if (decoder.source().kind(decoder.value()) != Found::object) {
      return notContainer(decoder.source(), decoder.value(), ScalarTarget::Type::object, decoder.errorDetail());
    }
    return Decoded<KeyedContainerCore>(std::in_place, decoder.source(), decoder.value(), decoder.place(),
                                       decoder.errorDetail());
  }

  [[nodiscard]] const CodingStep* step() const { return place_.step; }
  [[nodiscard]] std::vector<std::string> allKeys() const { return source_->allKeys(cursor_.object); }
  [[nodiscard]] Decoded<bool> contains(std::string_view key) const;
  [[nodiscard]] Decoded<bool> decodeNil(std::string_view key) const;
  [[nodiscard]] Decoded<KeyedContainerCore> nestedContainer(std::string_view key) const;
  [[nodiscard]] Decoded<UnkeyedDecodingContainer> nestedUnkeyedContainer(std::string_view key) const;
  [[nodiscard]] Decoded<Decoder> superDecoder(std::string_view key) const;

  template <class ValueType>
  [[nodiscard]] Decoded<ValueType> decode(std::string_view key) const;
  template <class ValueType>
  [[nodiscard]] Decoded<std::optional<ValueType>> decodeIfPresent(std::string_view key) const;
  // Decodes into `scalar`; the error, or nothing.
  template <DecodableScalar ValueType>
  [[nodiscard]] ErrorHolder readInto(std::string_view key, ValueType& scalar) const {
    ScalarTarget target(scalar, errorDetail_);
    if (!read(key, target)) return DecodingError::keyNotFound(key).holder();
    return std::move(target.failure());
  }
  [[nodiscard]] ErrorHolder readFields(std::span<const DecodingSource::Field> fields) const {
    return source_->readFields(cursor_, fields, this, errorDetail_);
  }

 private:
  // Decodes the value under `key` into `target`. Result: false if the key is missing.
  [[nodiscard]] bool read(std::string_view key, ScalarTarget& target) const;
  template <class ValueType>
  [[nodiscard]] Decoded<ValueType> nested(std::string_view key) const;
  // The result of `use` for a decoder of the value under `key`, or of `absent` if the key is missing.
  template <class ValueType, class Use, class Absent>
  [[nodiscard]] Decoded<ValueType> withDecoder(std::string_view key, Use&& use, Absent&& absent) const;

  const DecodingSource* source_;
  mutable DecodingSource::ObjectCursor cursor_;
  Place place_;
  ErrorDetail errorDetail_ = ErrorDetail::full;
};

}  // namespace detail

inline namespace platform {

/// The values of an object. Each key may be decoded any number of times, in any order; other keys are ignored.
/// Cost: constant per key if keys are decoded in the order of the document; for a JSON object of n keys in another
/// order, linear at first and logarithmic after some hundred steps.
/// Threads: one. Valid as long as its decoder.
template <CodingKeyType Key = std::string_view>
class KeyedDecodingContainer {
 public:
  explicit KeyedDecodingContainer(detail::KeyedContainerCore core) : core_(std::move(core)) {}

  [[nodiscard]] CodingPath codingPath() const { return detail::pathOf(core_.step()); }

  /// The keys of the object as texts.
  [[nodiscard]] std::vector<std::string> allKeys() const requires std::convertible_to<Key, std::string_view> {
    return core_.allKeys();
  }
  /// The keys of the object for which `fromStringValue` returns a key; others are skipped.
  [[nodiscard]] std::vector<Key> allKeys() const
      requires(CodingKeyFromText<Key> && !std::convertible_to<Key, std::string_view>) {
    std::vector<Key> keys;
    for (const std::string& text : core_.allKeys()) {
      if (const auto key = fromStringValue(std::type_identity<Key>{}, text)) keys.push_back(*key);
    }
    return keys;
  }

  /// Whether the object has `key`, with null included.
  [[nodiscard]] bool contains(const Key& key) const { return orThrow(core_.contains(stringValue(key))); }

  /// Whether the value under `key` is null. Throws: keyNotFound.
  [[nodiscard]] bool decodeNil(const Key& key) const { return orThrow(core_.decodeNil(stringValue(key))); }

  /// The value under `key`.
  /// Throws: keyNotFound; valueNotFound for null, unless ValueType is an optional; typeMismatch; dataCorrupted for a
  /// number that does not fit; any exception of the caller's type.
  template <class ValueType>
  [[nodiscard]] ValueType decode(const Key& key) const {
    return orThrow(tryDecode<ValueType>(key));
  }
  /// The same, with the error as a value.
  template <class ValueType>
  [[nodiscard]] Decoded<ValueType> tryDecode(const Key& key) const {
    return core_.template decode<ValueType>(stringValue(key));
  }

  /// The value under `key`. Empty when: the key is missing, or its value is null. Throws: as decode, otherwise.
  template <class ValueType>
  [[nodiscard]] std::optional<ValueType> decodeIfPresent(const Key& key) const {
    return orThrow(tryDecodeIfPresent<ValueType>(key));
  }
  template <class ValueType>
  [[nodiscard]] Decoded<std::optional<ValueType>> tryDecodeIfPresent(const Key& key) const {
    return core_.template decodeIfPresent<ValueType>(stringValue(key));
  }

  /// The object under `key`. Throws: keyNotFound; valueNotFound for null; typeMismatch.
  template <CodingKeyType NestedKey = std::string_view>
  [[nodiscard]] KeyedDecodingContainer<NestedKey> nestedContainer(const Key& key) const {
    return orThrow(tryNestedContainer<NestedKey>(key));
  }
  template <CodingKeyType NestedKey = std::string_view>
  [[nodiscard]] Decoded<KeyedDecodingContainer<NestedKey>> tryNestedContainer(const Key& key) const {
    auto core = core_.nestedContainer(stringValue(key));
    if (!core) return std::move(core.failure());
    return KeyedDecodingContainer<NestedKey>(*std::move(core));
  }

  /// The array under `key`, at its first element. Throws: keyNotFound; valueNotFound for null; typeMismatch.
  [[nodiscard]] UnkeyedDecodingContainer nestedUnkeyedContainer(const Key& key) const {
    return orThrow(tryNestedUnkeyedContainer(key));
  }
  [[nodiscard]] Decoded<UnkeyedDecodingContainer> tryNestedUnkeyedContainer(const Key& key) const {
    return core_.nestedUnkeyedContainer(stringValue(key));
  }

  /// A decoder of the value under `key`, by default "super"; a decoder of null if the key is missing.
  [[nodiscard]] Decoder superDecoder() const { return orThrow(core_.superDecoder("super")); }
  [[nodiscard]] Decoder superDecoder(const Key& key) const { return orThrow(core_.superDecoder(stringValue(key))); }

 private:
  template <class ValueType>
  [[nodiscard]] ValueType orThrow(Decoded<ValueType>&& outcome) const {
    return detail::valueOrThrow(std::move(outcome), core_.step());
  }

  detail::KeyedContainerCore core_;
};

}  // namespace platform

namespace detail {

template <class ValueType, class Use, class Absent>
Decoded<ValueType> KeyedContainerCore::withDecoder(std::string_view key, Use&& use, Absent&& absent) const {
  bool isMissing = false;
  Decoded<ValueType> outcome = captured([&]() -> Decoded<ValueType> {
    auto value = source_->find(cursor_, key);
    if (!value) return std::move(value.failure());
    isMissing = *value == DecodingSource::kNone;
    if (isMissing) return absent();
    const CodingStep step{place_.step, key, -1, place_.step->userInfo};
    Decoder decoder(*source_, *value, Place{&step, nullptr}, errorDetail_);
    return use(decoder);
  });
  if (!outcome && !isMissing) outcome.failure().prepend(key);
  return outcome;
}

inline bool KeyedContainerCore::read(std::string_view key, ScalarTarget& target) const {
  bool isThere = true;
  try {
    isThere = source_->readKey(cursor_, key, target);
  } catch (...) {
    target.fail(ErrorHolder::fromCurrentException());
  }
  if (target.failure()) target.failure().prepend(key);
  return isThere;
}

template <class ValueType>
Decoded<ValueType> KeyedContainerCore::decode(std::string_view key) const {
  if constexpr (DecodableScalar<ValueType>) {
    Decoded<ValueType> scalar(std::in_place);
    if (auto failure = readInto(key, *scalar)) scalar.fail(std::move(failure));
    return scalar;
  } else {
    return withDecoder<ValueType>(key, decodeValue<ValueType>,
                                  [&]() -> Decoded<ValueType> { return DecodingError::keyNotFound(key); });
  }
}

template <class ValueType>
Decoded<std::optional<ValueType>> KeyedContainerCore::decodeIfPresent(std::string_view key) const {
  using Result = std::optional<ValueType>;
  if constexpr (DecodableScalar<ValueType>) {
    ValueType scalar{};
    bool isNull = false;
    ScalarTarget target(scalar, isNull, errorDetail_);
    const bool isThere = read(key, target);
    if (target.failure()) return std::move(target.failure());
    return isThere && !isNull ? Result(std::move(scalar)) : Result();
  } else {
    return withDecoder<Result>(key, decodeValue<Result>, []() -> Decoded<Result> { return Result(); });
  }
}

}  // namespace detail

inline namespace platform {

template <CodingKeyType Key>
Decoded<KeyedDecodingContainer<Key>> Decoder::tryContainer() const {
  return detail::captured([this]() -> Decoded<KeyedDecodingContainer<Key>> {
    auto core = detail::KeyedContainerCore::of(*this);
    if (!core) return std::move(core.failure());
    return KeyedDecodingContainer<Key>(*std::move(core));
  });
}

template <CodingKeyType Key>
Decoded<KeyedDecodingContainer<Key>> UnkeyedDecodingContainer::tryNestedContainer() {
  auto core = nestedCore();
  if (!core) return std::move(core.failure());
  return KeyedDecodingContainer<Key>(*std::move(core));
}

template <CodingKeyType Key>
KeyedDecodingContainer<Key> Decoder::container() const {
  return detail::valueOrThrow(tryContainer<Key>(), place_.step);
}

}  // namespace platform
}  // namespace havrin
