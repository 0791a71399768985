// SPDX-License-Identifier: Apache-2.0
// Property lists under lenient decoding, against a walk over the same tree: every array in it keeps the same elements, as
// every type.
#include "plain_value.h"
#include <HavrinFoundation/platform/decoding/property_list_decoder.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace {

using namespace havrin;
using plain::Value;

// The list as a plain value; shared parts are written out. Gives up after `budget` values.
bool write(const PropertyList& list, Value& value, std::size_t& budget) {
  if (budget == 0) return false;
  --budget;
  switch (list.kind()) {
    case PropertyList::Kind::boolean:
      value.kind = Value::Kind::boolean;
      value.boolean = *list.boolean();
      return true;
    case PropertyList::Kind::integer:
      value.kind = Value::Kind::number;
      value.text = list.integer() ? std::to_string(*list.integer()) : std::to_string(*list.unsignedInteger());
      return true;
    case PropertyList::Kind::real:
      value.kind = Value::Kind::number;
      value.real = list.real();
      return true;
    case PropertyList::Kind::text:
      value.kind = Value::Kind::text;
      value.text = *list.text();
      return true;
    case PropertyList::Kind::array:
      value.kind = Value::Kind::array;
      for (const PropertyList& element : *list.array()) {
        if (!write(element, value.elements.emplace_back(), budget)) return false;
      }
      return true;
    case PropertyList::Kind::dictionary:
      value.kind = Value::Kind::object;
      for (const auto& entry : list.dictionary()->entries()) {
        value.keys.push_back(entry.key);
        if (!write(entry.value, value.elements.emplace_back(), budget)) return false;
      }
      return true;
    default:
      value.kind = Value::Kind::other;
      return true;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::byte> bytes(reinterpret_cast<const std::byte*>(data), size);
  const auto list = readPropertyList(bytes);
  const PropertyListDecoder decoder;
  if (!list) {
    const auto refused = decoder.tryDecode<bool>(bytes);
    plain::require(!refused && refused.error().kind() == DecodingError::Kind::dataCorrupted);
    return 0;
  }
  Value expected;
  std::size_t budget = 20'000;
  if (!write(*list, expected, budget)) return 0;
  decoder.read(bytes, [&](Decoder& document) { plain::compare(document, expected); });
  return 0;
}
