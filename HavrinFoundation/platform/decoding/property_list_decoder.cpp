// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/decoding/property_list_decoder.h>

#include <string>
#include <vector>

namespace havrin {
inline namespace platform {
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
      // From 2^63 on only the unsigned form has a value.
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

// A property list as a source; its values are addresses of PropertyList objects.
class ListSource final : public DecodingSource {
 public:
  Found kind(Value value) const override { return foundIn(list(value)); }
  void read(Value value, ScalarTarget& target) const override { readScalar(list(value), target); }

  std::vector<std::string> allKeys(Value object) const override {
    std::vector<std::string> keys;
    for (const auto& entry : list(object).dictionary()->entries()) keys.push_back(entry.key);
    return keys;
  }
  Decoded<Value> find(ObjectCursor& cursor, std::string_view key) const override {
    const PropertyList* const found = list(cursor.object).valueForKey(key);
    return found != nullptr ? valueOf(*found) : kNone;
  }

  std::optional<std::size_t> count(Value array) const override { return list(array).array()->size(); }
  Value first(Value) const override { return 0; }
  bool isAtEnd(const ArrayCursor& cursor) const override { return cursor.at == list(cursor.array).array()->size(); }
  Decoded<Value> current(const ArrayCursor& cursor) const override {
    return valueOf((*list(cursor.array).array())[cursor.at]);
  }
  Decoded<void> advance(ArrayCursor& cursor) const override {
    ++cursor.at;
    return {};
  }

  static Value valueOf(const PropertyList& list) { return reinterpret_cast<Value>(&list); }

 private:
  static const PropertyList& list(Value value) { return *reinterpret_cast<const PropertyList*>(value); }
};

}  // namespace

Decoded<PropertyList> PropertyListDecoder::listIn(std::span<const std::byte> bytes) {
  auto list = readPropertyList(bytes);
  if (!list) return DecodingError::dataCorrupted("the document is not a property list: " + list.error().detail());
  return list;
}

Decoder PropertyListDecoder::decoderOf(const PropertyList& list, const UserInfo& userInfo) {
  static const ListSource* const source = new ListSource;  // without state: one for all lists, never destroyed
  return Decoder(*source, ListSource::valueOf(list), userInfo);
}

}  // namespace platform
}  // namespace havrin
