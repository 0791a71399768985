// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/decoding/decoder.h>

#include <HavrinFoundation/platform/decoding/keyed_decoding_container.h>
#include <HavrinFoundation/platform/decoding/unkeyed_decoding_container.h>

#include <algorithm>

namespace havrin {
inline namespace platform {
namespace {

class NullSource final : public DecodingSource {
 public:
  Found kind(Value) const override { return Found::null; }
  void read(Value, ScalarTarget& target) const override { target.putNull(); }
  // Never called: null is not a container.
  std::vector<std::string> allKeys(Value) const override { return {}; }
  Decoded<Value> find(ObjectCursor&, std::string_view) const override { return kNone; }
  std::optional<std::size_t> count(Value) const override { return 0; }
  Value first(Value) const override { return kNone; }
  bool isAtEnd(const ArrayCursor&) const override { return true; }
  Decoded<Value> current(const ArrayCursor&) const override { return kNone; }
  Decoded<void> advance(ArrayCursor&) const override { return {}; }
};

detail::Place owned(const detail::Place& parent, std::string_view name, std::int64_t index, const UserInfo* userInfo) {
  auto owner = std::make_shared<detail::OwnedStep>();
  owner->name = name;
  owner->parentOwner = parent.owner;
  owner->step = {parent.step, owner->name, index, userInfo};
  const detail::CodingStep* const step = &owner->step;
  return {step, std::move(owner)};
}

}  // namespace

}  // namespace platform

namespace detail {

CodingPath pathOf(const CodingStep* step) {
  std::vector<CodingKey> keys;
  for (; step->parent != nullptr; step = step->parent) {
    keys.push_back(step->index < 0 ? CodingKey(step->name) : CodingKey(static_cast<std::size_t>(step->index)));
  }
  std::reverse(keys.begin(), keys.end());
  return CodingPath(std::move(keys));
}

const DecodingSource& nullSource() {
  static const NullSource* const source = new NullSource;
  return *source;
}

ErrorHolder notContainer(const DecodingSource& source, DecodingSource::Value value, ScalarTarget::Type wanted,
                         ErrorDetail detail) {
  ScalarTarget target(wanted, nullptr, detail);
  source.read(value, target);
  return std::move(target.failure());
}

Place Place::inside(std::string_view name) const { return owned(*this, name, -1, step->userInfo); }

Place Place::inside(std::size_t index) const {
  return owned(*this, {}, static_cast<std::int64_t>(index), step->userInfo);
}

Decoded<bool> KeyedContainerCore::contains(std::string_view key) const {
  return captured([&]() -> Decoded<bool> {
    auto value = source_->find(cursor_, key);
    if (!value) return std::move(value.failure());
    return *value != DecodingSource::kNone;
  });
}

Decoded<bool> KeyedContainerCore::decodeNil(std::string_view key) const {
  return withDecoder<bool>(
      key, [](Decoder& decoder) -> Decoded<bool> { return decoder.isNull(); },
      [&]() -> Decoded<bool> { return DecodingError::keyNotFound(key); });
}

// The value under `key` as a container T.
template <class T>
Decoded<T> KeyedContainerCore::nested(std::string_view key) const {
  const auto open = [&](Decoder& decoder) -> Decoded<T> {
    auto container = T::of(decoder);
    if (!container) return container;
    return Decoded<T>(std::in_place, decoder.source(), decoder.value(), place_.inside(key));
  };
  return withDecoder<T>(key, open, [&]() -> Decoded<T> { return DecodingError::keyNotFound(key); });
}

Decoded<KeyedContainerCore> KeyedContainerCore::nestedContainer(std::string_view key) const {
  return nested<KeyedContainerCore>(key);
}

Decoded<UnkeyedDecodingContainer> KeyedContainerCore::nestedUnkeyedContainer(std::string_view key) const {
  return nested<UnkeyedDecodingContainer>(key);
}

Decoded<Decoder> KeyedContainerCore::superDecoder(std::string_view key) const {
  return captured([&]() -> Decoded<Decoder> {
    auto value = source_->find(cursor_, key);
    if (!value) return std::move(value.failure());
    const DecodingSource& source = *value == DecodingSource::kNone ? nullSource() : *source_;
    return Decoded<Decoder>(std::in_place, source, *value, place_.inside(key));
  });
}

}  // namespace detail

inline namespace platform {

Decoder::Decoder(const DecodingSource& source, DecodingSource::Value value, const UserInfo& userInfo)
    : source_(&source), value_(value), place_(owned({}, {}, -1, &userInfo)) {}

const UserInfo& Decoder::noUserInfo() {
  static const auto* const none = new UserInfo;
  return *none;
}

Decoded<UnkeyedDecodingContainer> Decoder::tryUnkeyedContainer() const {
  return detail::captured([this] { return UnkeyedDecodingContainer::of(*this); });
}

UnkeyedDecodingContainer Decoder::unkeyedContainer() const {
  return detail::valueOrThrow(tryUnkeyedContainer(), place_.step);
}

SingleValueDecodingContainer Decoder::singleValueContainer() { return SingleValueDecodingContainer(*this); }

Decoded<UnkeyedDecodingContainer> UnkeyedDecodingContainer::of(const Decoder& decoder) {
  if (decoder.source().kind(decoder.value()) != Found::array) {
    return detail::notContainer(decoder.source(), decoder.value(), ScalarTarget::Type::array, decoder.errorDetail());
  }
  return Decoded<UnkeyedDecodingContainer>(std::in_place, decoder.source(), decoder.value(), decoder.place(),
                                           decoder.errorDetail());
}

Decoded<bool> UnkeyedDecodingContainer::tryDecodeNil() {
  return passing<bool>([this]() -> Decoded<bool> {
    auto value = source_->current(cursor_);
    if (!value) return std::move(value.failure());
    if (source_->kind(*value) != Found::null) return false;
    if (auto moved = advance(); !moved) return std::move(moved.failure());
    return true;
  });
}

template <class T, class Open>
Decoded<T> UnkeyedDecodingContainer::opening(Open&& open) {
  return passing<T>([&]() -> Decoded<T> {
    auto value = source_->current(cursor_);
    if (!value) return std::move(value.failure());
    Decoded<T> opened = open(Decoder(*source_, *value, place_.inside(currentIndex())));
    if (!opened) return opened;
    if (auto moved = advance(); !moved) return std::move(moved.failure());
    return opened;
  });
}

Decoded<detail::KeyedContainerCore> UnkeyedDecodingContainer::nestedCore() {
  return opening<detail::KeyedContainerCore>(detail::KeyedContainerCore::of);
}

Decoded<UnkeyedDecodingContainer> UnkeyedDecodingContainer::tryNestedUnkeyedContainer() {
  return opening<UnkeyedDecodingContainer>(UnkeyedDecodingContainer::of);
}

Decoded<Decoder> UnkeyedDecodingContainer::trySuperDecoder() {
  return opening<Decoder>([](Decoder decoder) { return Decoded<Decoder>(std::in_place, std::move(decoder)); });
}

}  // namespace platform
}  // namespace havrin
