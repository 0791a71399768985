// SPDX-License-Identifier: Apache-2.0
// The rules by which types are decoded. Included by decoding.h.
//
//   struct Station {
//     std::string name;
//     std::optional<std::string> song;
//     using Fields = FieldList<Field<"name", &Station::name>, Field<"song", &Station::song>>;
//     static Decoded<Station> fromDecoder(Decoder& decoder) {
//       auto station = decodeFields<Station>(decoder);
//       if (station && station->name.empty()) return DecodingError::dataCorrupted("the name of a station is empty");
//       return station;
//     }
//   };
//   JSONDecoder().decode<Station>(R"({"name": "Nord"})").name      "Nord"
//   JSONDecoder().tryDecode<Station>(R"({"name": ""})").error().detail()
//           "the name of a station is empty"
#pragma once

#include <HavrinFoundation/platform/base/text.h>
#include <HavrinFoundation/platform/decoding/decoder.h>
#include <HavrinFoundation/platform/decoding/keyed_decoding_container.h>
#include <HavrinFoundation/platform/decoding/unkeyed_decoding_container.h>

#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

/// Customisation point for types that cannot be changed: specialise it with `static Decoded<Type>
/// fromDecoder(Decoder&)`.
template <class Type>
struct DecodingTraits;

/// One field of a type: its key and the member that receives its value. An optional member stays empty if the key is
/// absent or its value null. For any other member, an absent key is keyNotFound and null is valueNotFound.
template <Text Name, auto Member>
struct Field {
  static constexpr std::string_view kName = Name.view();
  static constexpr auto kMember = Member;
};

/// The fields of a type, decoded in this order; a type names it `Fields`. Requires that the type is
/// default-constructible.
/// Cost: one pass over the object if the keys of the document come in this order.
template <class... Fields>
struct FieldList {};

}  // namespace platform

namespace detail {

template <class Type>
inline constexpr bool kIsVector = false;
template <class Type, class Allocator>
inline constexpr bool kIsVector<std::vector<Type, Allocator>> = true;
// std::map, std::unordered_map and what has their shape, from text to a value: known by their members, which costs no
// include.
template <class Type>
concept TextMap = std::same_as<typename Type::key_type, std::string> &&
    requires(Type map, std::string key, typename Type::mapped_type value) {
  map.try_emplace(std::move(key), std::move(value));
};

template <class Type>
concept DecodesByTraits = requires(Decoder& decoder) {
  { DecodingTraits<Type>::fromDecoder(decoder) } -> std::same_as<Decoded<Type>>;
};
template <class Type>
concept DecodesByFunction = requires(Decoder& decoder) {
  { Type::fromDecoder(decoder) } -> std::same_as<Decoded<Type>>;
};
template <class Type>
concept DecodesByConstructor = !std::is_aggregate_v<Type> && std::constructible_from<Type, Decoder&>;
template <class Type>
concept DecodesByFields = requires {
  typename Type::Fields;
}
&&std::default_initializable<Type>;

}  // namespace detail

inline namespace platform {

/// A type that can be decoded: a built-in type, or a type of the caller in one of the four ways listed in decoding.h.
template <class Type>
concept Decodable = DecodableScalar<Type> || detail::kIsOptional<Type> || detail::kIsVector<Type> ||
    detail::TextMap<Type> || detail::DecodesByTraits<Type> || detail::DecodesByFunction<Type> ||
    detail::DecodesByConstructor<Type> || detail::DecodesByFields<Type>;

/// A Type decoded by its list `Fields`, for a `fromDecoder` that adds checks.
/// Result: the value, or the first error, with its path.
template <class Type>
[[nodiscard]] Decoded<Type> decodeFields(Decoder& decoder);

}  // namespace platform

namespace detail {

// The elements to reserve memory for before decoding: 64 MiB of them at most, since the count is a claim of the document.
template <class Type>
constexpr std::size_t reservedElements(std::size_t count) {
  constexpr std::size_t kMost = (std::size_t{64} << 20) / sizeof(Type);
  return count < kMost ? count : kMost;
}

// Decodes a member that is not a scalar.
template <class Type>
ErrorHolder decodeMember(const void* container, std::string_view key, void* member) {
  const auto& core = *static_cast<const KeyedContainerCore*>(container);
  auto value = [&] {
    if constexpr (kIsOptional<Type>)
      return core.decodeIfPresent<typename Type::value_type>(key);
    else
      return core.decode<Type>(key);
  }();
  if (!value) return std::move(value.failure());
  *static_cast<Type*>(member) = *std::move(value);
  return {};
}

template <class Type>
DecodingSource::Field fieldOf(std::string_view key, Type& member) {
  if constexpr (DecodableScalar<Type>) {
    return {key, ScalarTarget::typeOf<Type>(), &member, nullptr};
  } else {
    return {key, {}, &member, decodeMember<Type>};
  }
}

template <class Type, class... Fields>
ErrorHolder decodeMembers(const KeyedContainerCore& container, Type& value, FieldList<Fields...>) {
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
  elements->reserve(reservedElements<Element>(container->count().value_or(0)));
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

inline namespace platform {

template <class Type>
Decoded<Type> decodeFields(Decoder& decoder) {
  Decoded<Type> value(std::in_place);
  auto container = detail::KeyedContainerCore::of(decoder);
  detail::ErrorHolder failure =
      container ? detail::decodeMembers(*container, *value, typename Type::Fields{}) : std::move(container.failure());
  if (failure) value.fail(std::move(failure));
  return value;
}

template <class Type>
Decoded<Type> decodeValue(Decoder& decoder) {
  static_assert(
      Decodable<Type>,
      "This type does not decode: give it a FieldList named Fields, a fromDecoder, a constructor from Decoder&, "
      "or specialise DecodingTraits (decoding.h shows each).");
  if constexpr (DecodableScalar<Type>) {
    Decoded<Type> value(std::in_place);
    ScalarTarget target(*value, decoder.errorDetail());
    decoder.source().read(decoder.value(), target);
    if (target.failure()) value.fail(std::move(target.failure()));
    return value;
  } else if constexpr (detail::DecodesByTraits<Type>) {
    return DecodingTraits<Type>::fromDecoder(decoder.describingErrors());
  } else if constexpr (detail::DecodesByFunction<Type>) {
    return Type::fromDecoder(decoder.describingErrors());
  } else if constexpr (detail::kIsOptional<Type>) {
    if (decoder.isNull()) return Type();
    auto value = decodeValue<typename Type::value_type>(decoder);
    if (!value) return std::move(value.failure());
    return Type(*std::move(value));
  } else if constexpr (detail::kIsVector<Type>) {
    return detail::decodeElements<Type>(decoder);
  } else if constexpr (detail::TextMap<Type>) {
    return detail::decodeEntries<Type>(decoder);
  } else if constexpr (detail::DecodesByConstructor<Type>) {
    return detail::captured([&] { return Decoded<Type>(std::in_place, decoder.describingErrors()); });
  } else {
    return decodeFields<Type>(decoder);
  }
}

}  // namespace platform
}  // namespace havrin
