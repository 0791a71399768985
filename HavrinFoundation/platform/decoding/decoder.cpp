#include <HavrinFoundation/platform/decoding/decoder.h>

#include <HavrinFoundation/platform/decoding/keyed_decoding_container.h>
#include <HavrinFoundation/platform/decoding/unkeyed_decoding_container.h>

#include <algorithm>

namespace havrin::inline platform {
namespace {

class NullSource final : public ValueSource {
 public:
  bool isNull() const override { return true; }
  void read(ScalarTarget& target) const override { target.putNull(); }
  SourceBox<KeyedSource> keyed() const override { return DecodingError::valueNotFound("an object"); }
  SourceBox<UnkeyedSource> unkeyed() const override { return DecodingError::valueNotFound("an array"); }
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

namespace detail {

CodingPath pathOf(const CodingStep* step) {
  std::vector<CodingKey> keys;
  for (; step->parent != nullptr; step = step->parent) {
    keys.push_back(step->index < 0 ? CodingKey(step->name) : CodingKey(static_cast<std::size_t>(step->index)));
  }
  std::reverse(keys.begin(), keys.end());
  return CodingPath(std::move(keys));
}

SourceBox<ValueSource> nullSource() { return NullSource(); }

Place Place::inside(std::string_view name) const { return owned(*this, name, -1, step->userInfo); }

Place Place::inside(std::size_t index) const {
  return owned(*this, {}, static_cast<std::int64_t>(index), step->userInfo);
}

Decoded<bool> KeyedContainerCore::contains(std::string_view key) const {
  return captured([&]() -> Decoded<bool> {
    auto source = source_->find(key);
    if (source.failure()) return std::move(source.failure());
    return static_cast<bool>(source);
  });
}

Decoded<bool> KeyedContainerCore::decodeNil(std::string_view key) const {
  return withDecoder<bool>(
      key, [](Decoder& decoder) -> Decoded<bool> { return decoder.source().isNull(); },
      [&]() -> Decoded<bool> { return DecodingError::keyNotFound(key); });
}

Decoded<KeyedContainerCore> KeyedContainerCore::nestedContainer(std::string_view key) const {
  using Result = Decoded<KeyedContainerCore>;
  const auto open = [&](Decoder& decoder) -> Result {
    auto source = decoder.source().keyed();
    if (!source) return std::move(source.failure());
    return Result(std::in_place, std::move(source), place_.inside(key));
  };
  return withDecoder<KeyedContainerCore>(key, open, [&]() -> Result { return DecodingError::keyNotFound(key); });
}

Decoded<UnkeyedDecodingContainer> KeyedContainerCore::nestedUnkeyedContainer(std::string_view key) const {
  using Result = Decoded<UnkeyedDecodingContainer>;
  const auto open = [&](Decoder& decoder) -> Result {
    auto source = decoder.source().unkeyed();
    if (!source) return std::move(source.failure());
    return Result(std::in_place, std::move(source), place_.inside(key));
  };
  return withDecoder<UnkeyedDecodingContainer>(key, open, [&]() -> Result { return DecodingError::keyNotFound(key); });
}

Decoded<Decoder> KeyedContainerCore::superDecoder(std::string_view key) const {
  return captured([&]() -> Decoded<Decoder> {
    auto source = source_->find(key);
    if (source.failure()) return std::move(source.failure());
    return Decoded<Decoder>(std::in_place, source ? std::move(source) : nullSource(), place_.inside(key));
  });
}

}  // namespace detail

Decoder::Decoder(SourceBox<ValueSource> source, const UserInfo& userInfo)
    : source_(std::move(source)), place_(owned({}, {}, -1, &userInfo)) {}

const UserInfo& Decoder::noUserInfo() {
  static const auto* const none = new UserInfo;
  return *none;
}

Decoded<UnkeyedDecodingContainer> Decoder::tryUnkeyedContainer() const {
  return detail::captured([this]() -> Decoded<UnkeyedDecodingContainer> {
    UnkeyedDecodingContainer container(*this);
    if (!container.opened()) return std::move(container.opened().failure());
    return container;
  });
}

UnkeyedDecodingContainer Decoder::unkeyedContainer() const {
  return detail::valueOrThrow(tryUnkeyedContainer(), place_.step);
}

SingleValueDecodingContainer Decoder::singleValueContainer() { return SingleValueDecodingContainer(*this); }

Decoded<bool> UnkeyedDecodingContainer::tryDecodeNil() {
  return passing<bool>([this]() -> Decoded<bool> {
    auto source = source_->current();
    if (!source) return std::move(source.failure());
    if (!source->isNull()) return false;
    if (auto moved = source_->advance(); !moved) return std::move(moved.failure());
    return true;
  });
}

Decoded<detail::KeyedContainerCore> UnkeyedDecodingContainer::nestedCore() {
  using Result = Decoded<detail::KeyedContainerCore>;
  return passing<detail::KeyedContainerCore>([this]() -> Result {
    auto value = source_->current();
    if (!value) return std::move(value.failure());
    auto source = value->keyed();
    if (!source) return std::move(source.failure());
    detail::Place place = place_.inside(currentIndex());
    if (auto moved = source_->advance(); !moved) return std::move(moved.failure());
    return Result(std::in_place, std::move(source), std::move(place));
  });
}

Decoded<UnkeyedDecodingContainer> UnkeyedDecodingContainer::tryNestedUnkeyedContainer() {
  using Result = Decoded<UnkeyedDecodingContainer>;
  return passing<UnkeyedDecodingContainer>([this]() -> Result {
    auto value = source_->current();
    if (!value) return std::move(value.failure());
    auto source = value->unkeyed();
    if (!source) return std::move(source.failure());
    detail::Place place = place_.inside(currentIndex());
    if (auto moved = source_->advance(); !moved) return std::move(moved.failure());
    return Result(std::in_place, std::move(source), std::move(place));
  });
}

Decoded<Decoder> UnkeyedDecodingContainer::trySuperDecoder() {
  return passing<Decoder>([this]() -> Decoded<Decoder> {
    auto value = source_->current();
    if (!value) return std::move(value.failure());
    detail::Place place = place_.inside(currentIndex());
    if (auto moved = source_->advance(); !moved) return std::move(moved.failure());
    return Decoded<Decoder>(std::in_place, std::move(value), std::move(place));
  });
}

}  // namespace havrin::inline platform
