#include <HavrinFoundation/platform/decoding/property_list_decoder.h>

#include <string>
#include <vector>

namespace havrin::inline platform {
namespace {

using Kind = PropertyList::Kind;

Found foundIn(const PropertyList& list) {
  switch (list.kind()) {
    case Kind::boolean:
      return Found::boolean;
    case Kind::integer:
    case Kind::real:
      return Found::number;
    case Kind::date:
      return Found::date;
    case Kind::uid:
      return Found::uid;
    case Kind::text:
      return Found::string;
    case Kind::data:
      return Found::data;
    case Kind::array:
      return Found::array;
    case Kind::dictionary:
      return Found::object;
  }
  return Found::nothing;
}

void readScalar(const PropertyList& list, ScalarTarget& target) {
  switch (list.kind()) {
    case Kind::boolean:
      return target.putBoolean(*list.boolean());
    case Kind::integer:
      if (const auto integer = list.integer()) return target.putInteger(*integer);
      return target.putInteger(*list.unsignedInteger());
    case Kind::real:
      return target.putReal(*list.real());
    case Kind::text:
      return target.putText(*list.text());
    default:
      return target.refuse(foundIn(list));
  }
}

class ListValue final : public ValueSource {
 public:
  explicit ListValue(const PropertyList& list) : list_(&list) {}

  bool isNull() const override { return false; }
  void read(ScalarTarget& target) const override { readScalar(*list_, target); }
  SourceBox<KeyedSource> keyed() const override;
  SourceBox<UnkeyedSource> unkeyed() const override;

 private:
  const PropertyList* list_;
};

class ListDictionary final : public KeyedSource {
 public:
  explicit ListDictionary(const PropertyList::Dictionary& dictionary) : dictionary_(&dictionary) {}

  std::vector<std::string> allKeys() const override {
    std::vector<std::string> keys;
    keys.reserve(dictionary_->entries().size());
    for (const auto& entry : dictionary_->entries()) keys.push_back(entry.key);
    return keys;
  }
  SourceBox<ValueSource> find(std::string_view key) const override {
    const PropertyList* const value = dictionary_->find(key);
    if (value == nullptr) return {};
    return ListValue(*value);
  }
  bool read(std::string_view key, ScalarTarget& target) const override {
    const PropertyList* const value = dictionary_->find(key);
    if (value == nullptr) return false;
    readScalar(*value, target);
    return true;
  }

 private:
  const PropertyList::Dictionary* dictionary_;
};

class ListArray final : public UnkeyedSource {
 public:
  explicit ListArray(const PropertyList::Array& array) : array_(&array) {}

  std::optional<std::size_t> count() const override { return array_->size(); }
  bool isAtEnd() const override { return index_ == array_->size(); }
  std::size_t currentIndex() const override { return index_; }
  SourceBox<ValueSource> current() override { return ListValue((*array_)[index_]); }
  Decoded<void> advance() override {
    ++index_;
    return {};
  }
  void read(ScalarTarget& target) override {
    readScalar((*array_)[index_], target);
    if (!target.failure()) ++index_;
  }

 private:
  const PropertyList::Array* array_;
  std::size_t index_ = 0;
};

SourceBox<KeyedSource> ListValue::keyed() const {
  if (const auto* const dictionary = list_->dictionary()) return ListDictionary(*dictionary);
  return DecodingError::typeMismatch("an object", foundIn(*list_));
}

SourceBox<UnkeyedSource> ListValue::unkeyed() const {
  if (const auto* const array = list_->array()) return ListArray(*array);
  return DecodingError::typeMismatch("an array", foundIn(*list_));
}

}  // namespace

Decoded<PropertyList> PropertyListDecoder::listIn(std::span<const std::byte> bytes) {
  auto list = readPropertyList(bytes);
  if (!list) return DecodingError::dataCorrupted("the document is no property list: " + list.error().description());
  return *std::move(list);
}

SourceBox<ValueSource> PropertyListDecoder::source(const PropertyList& list) { return ListValue(list); }

}  // namespace havrin::inline platform
