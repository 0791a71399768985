// How each type is decoded. Comes with decoding.h.
//
//   template <> struct havrin::DecodingTraits<Colour> {
//     static Decoded<Colour> fromDecoder(Decoder& decoder) {
//       auto code = decodeValue<std::string>(decoder);
//       if (!code) return code.error();
//       if (code->size() != 7) return DecodingError::dataCorrupted("no colour code: " + *code);
//       return Colour(*code);
//     }
//   };
#pragma once

#include <HavrinFoundation/platform/base/text.h>
#include <HavrinFoundation/platform/decoding/decoder.h>
#include <HavrinFoundation/platform/decoding/keyed_decoding_container.h>
#include <HavrinFoundation/platform/decoding/unkeyed_decoding_container.h>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace havrin::inline platform {

/// The way to decode a type whose class cannot be changed: specialise it with a `static Decoded<T> fromDecoder(Decoder&)`.
template <class T>
struct DecodingTraits;

/// One field of a type: the key under which it stands, and the member it fills. A member that is an optional stays empty
/// where the key is absent or null stands there; for any other member the key must be there.
template <Text Name, auto Member>
struct Field {
  static constexpr std::string_view kName = Name.view();
  static constexpr auto kMember = Member;
};

/// The fields of a type, decoded in this order, as its member type `Fields`. The type is default-constructible.
template <class... Fields>
struct FieldList {};

namespace detail {

template <class T>
inline constexpr bool kIsVector = false;
template <class T, class Allocator>
inline constexpr bool kIsVector<std::vector<T, Allocator>> = true;
template <class T>
inline constexpr bool kIsTextMap = false;
template <class T, class Order, class Allocator>
inline constexpr bool kIsTextMap<std::map<std::string, T, Order, Allocator>> = true;
template <class T, class Hash, class Equal, class Allocator>
inline constexpr bool kIsTextMap<std::unordered_map<std::string, T, Hash, Equal, Allocator>> = true;

template <class T>
concept DecodesByTraits = requires(Decoder& decoder) {
  { DecodingTraits<T>::fromDecoder(decoder) } -> std::same_as<Decoded<T>>;
};
template <class T>
concept DecodesByFunction = requires(Decoder& decoder) {
  { T::fromDecoder(decoder) } -> std::same_as<Decoded<T>>;
};
template <class T>
concept DecodesByConstructor = !std::is_aggregate_v<T> && std::constructible_from<T, Decoder&>;
template <class T>
concept DecodesByFields = requires {
  typename T::Fields;
}
&&std::default_initializable<T>;

}  // namespace detail

/// A type that decodes: each of the four ways and the built-in types at the head of decoding.h.
template <class T>
concept Decodable = DecodableScalar<T> || detail::kIsOptional<T> || detail::kIsVector<T> || detail::kIsTextMap<T> ||
    detail::DecodesByTraits<T> || detail::DecodesByFunction<T> || detail::DecodesByConstructor<T> ||
    detail::DecodesByFields<T>;

/// A T filled as its list `Fields` says: for a `fromDecoder` that only adds a check to it.
template <class T>
[[nodiscard]] Decoded<T> decodeFields(Decoder& decoder);

namespace detail {

// What growing ahead of decoding may cost, whatever a document claims about its counts.
template <class T>
inline constexpr std::size_t kReservedElements = (std::size_t{64} << 20) / sizeof(T);

// Decodes a member that is not a scalar.
template <class T>
ErrorHolder decodeMember(const void* container, std::string_view key, void* member) {
  const auto& core = *static_cast<const KeyedContainerCore*>(container);
  auto value = [&] {
    if constexpr (kIsOptional<T>)
      return core.decodeIfPresent<typename T::value_type>(key);
    else
      return core.decode<T>(key);
  }();
  if (!value) return std::move(value.failure());
  *static_cast<T*>(member) = *std::move(value);
  return {};
}

template <class T>
DecodingSource::Field fieldOf(std::string_view key, T& member) {
  if constexpr (DecodableScalar<T>) {
    return {key, ScalarTarget::typeOf<T>(), &member, nullptr};
  } else {
    return {key, {}, &member, decodeMember<T>};
  }
}

template <class T, class... Fields>
ErrorHolder decodeMembers(const KeyedContainerCore& container, T& value, FieldList<Fields...>) {
  const DecodingSource::Field fields[] = {fieldOf(Fields::kName, value.*Fields::kMember)...};
  return container.readFields(fields);
}

template <class Elements>
Decoded<Elements> decodeElements(Decoder& decoder) {
  using Element = typename Elements::value_type;
  Decoded<Elements> elements(std::in_place);
  auto container = UnkeyedDecodingContainer::of(decoder);
  if (!container) {
    elements.fail(std::move(container.failure()));
    return elements;
  }
  elements->reserve(std::min(container->count().value_or(0), kReservedElements<Element>));
  while (!container->isAtEnd()) {
    auto element = container->template tryDecode<Element>();
    if (!element) {
      elements.fail(std::move(element.failure()));
      break;
    }
    elements->push_back(*std::move(element));
  }
  return elements;
}

template <class Map>
Decoded<Map> decodeEntries(Decoder& decoder) {
  auto container = KeyedContainerCore::of(decoder);
  if (!container) return std::move(container.failure());
  Map entries;
  for (std::string& key : container->allKeys()) {
    auto value = container->template decode<typename Map::mapped_type>(key);
    if (!value) return std::move(value.failure());
    entries.try_emplace(std::move(key), *std::move(value));
  }
  return entries;
}

}  // namespace detail

template <class T>
Decoded<T> decodeFields(Decoder& decoder) {
  Decoded<T> value(std::in_place);
  auto container = detail::KeyedContainerCore::of(decoder);
  detail::ErrorHolder failure =
      container ? detail::decodeMembers(*container, *value, typename T::Fields{}) : std::move(container.failure());
  if (failure) value.fail(std::move(failure));
  return value;
}

template <class T>
Decoded<T> decodeValue(Decoder& decoder) {
  static_assert(
      Decodable<T>,
      "This type does not decode: give it a FieldList named Fields, a fromDecoder, a constructor from Decoder&, "
      "or specialise DecodingTraits (decoding.h shows each).");
  if constexpr (DecodableScalar<T>) {
    Decoded<T> value(std::in_place);
    ScalarTarget target(*value, decoder.errorDetail());
    decoder.source().read(decoder.value(), target);
    if (target.failure()) value.fail(std::move(target.failure()));
    return value;
  } else if constexpr (detail::DecodesByTraits<T>) {
    return DecodingTraits<T>::fromDecoder(decoder.describingErrors());
  } else if constexpr (detail::DecodesByFunction<T>) {
    return T::fromDecoder(decoder.describingErrors());
  } else if constexpr (detail::kIsOptional<T>) {
    if (decoder.isNull()) return T();
    auto value = decodeValue<typename T::value_type>(decoder);
    if (!value) return std::move(value.failure());
    return T(*std::move(value));
  } else if constexpr (detail::kIsVector<T>) {
    return detail::decodeElements<T>(decoder);
  } else if constexpr (detail::kIsTextMap<T>) {
    return detail::decodeEntries<T>(decoder);
  } else if constexpr (detail::DecodesByConstructor<T>) {
    return detail::captured([&] { return Decoded<T>(std::in_place, decoder.describingErrors()); });
  } else {
    return decodeFields<T>(decoder);
  }
}

}  // namespace havrin::inline platform
