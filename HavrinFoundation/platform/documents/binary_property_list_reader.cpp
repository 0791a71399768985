// SPDX-License-Identifier: Apache-2.0
// Builds the tree of a binary property list.
#include <HavrinFoundation/platform/documents/binary_property_list.h>

#include <algorithm>
#include <optional>

namespace havrin {
inline namespace platform {
namespace {

// Each object is read once and shared by all that refer to it.
class TreeReader {
 public:
  TreeReader(const BinaryPropertyList& list, std::uint64_t dataSize)
      : list_(list), made_(list.objectCount()), largestExpansion_(std::max(kLargestExpansion, 16 * dataSize)) {}

  Decoded<PropertyList> readTop() {
    const auto top = read(list_.topObject(), 1);
    if (!top) return top.error();
    return *(*top)->value;
  }

 private:
  struct Made {
    std::optional<PropertyList> value;
    std::uint64_t expansion = 0;  // the size in bytes with shared parts counted at each occurrence
    bool isOpen = false;          // its parts are being read: meeting it now is a cycle
  };
  using Read = Decoded<const Made*>;

  static constexpr std::uint64_t kLargestExpansion = std::uint64_t{16} << 20;
  static constexpr std::uint64_t kExpansionOfAnObject = 8;  // added to each, so that empty objects count too

  // The object with a number that the object at the offset `from` refers to.
  Read read(std::uint64_t number, std::size_t depth, std::uint64_t from = 0) {
    if (number >= list_.objectCount()) return errorAtByte(from, "reference to an object that does not exist");
    Made& made = made_[number];
    if (made.value) return &made;
    const std::uint64_t offset = list_.offsetOf(number);
    if (made.isOpen) return errorAtByte(offset, "the object contains itself");
    if (depth > PropertyList::kDeepestNesting) return errorAtByte(offset, "nested deeper than 512 levels");

    const auto object = list_.object(number);
    if (!object) return object.error();
    bytesRead_ += object->encodedSize();
    if (bytesRead_ > list_.objectBytes()) return errorAtByte(offset, "objects overlap");
    made.expansion = kExpansionOfAnObject + object->encodedSize();

    made.isOpen = true;
    auto failure = fill(made, *object, depth, offset);
    made.isOpen = false;
    if (failure) return failure;
    return &made;
  }

  detail::ErrorHolder fill(Made& made, const BinaryObject& object, std::size_t depth, std::uint64_t offset) {
    using Kind = BinaryObject::Kind;
    switch (object.kind()) {
      case Kind::boolean:
        made.value.emplace(object.boolean());
        break;
      case Kind::integer:
        made.value.emplace(object.integer());
        break;
      case Kind::unsignedInteger:
        made.value.emplace(object.unsignedInteger());
        break;
      case Kind::real:
        made.value.emplace(object.real());
        break;
      case Kind::date:
        made.value.emplace(object.date());
        break;
      case Kind::uid:
        made.value.emplace(PropertyList::UID{object.uid()});
        break;
      case Kind::data:
        made.value.emplace(PropertyList::Data(object.data().begin(), object.data().end()));
        break;
      case Kind::asciiText:
      case Kind::utf16Text:
      case Kind::utf8Text:
        made.value.emplace(object.text());
        break;
      case Kind::array:
        return fillArray(made, object, depth, offset);
      case Kind::dictionary:
        return fillDictionary(made, object, depth, offset);
    }
    return {};
  }

  detail::ErrorHolder fillArray(Made& made, const BinaryObject& object, std::size_t depth, std::uint64_t offset) {
    PropertyList::Array elements;
    elements.reserve(object.count());
    for (std::uint64_t i = 0; i < object.count(); ++i) {
      auto element = read(object.element(i), depth + 1, offset);
      if (!element) return std::move(element.failure());
      if (!expand(made, **element)) return errorAtByte(offset, kTooMuch).holder();
      elements.push_back(*(*element)->value);
    }
    made.value.emplace(std::move(elements));
    return {};
  }

  detail::ErrorHolder fillDictionary(Made& made, const BinaryObject& object, std::size_t depth, std::uint64_t offset) {
    std::vector<PropertyList::Dictionary::Entry> entries;
    entries.reserve(object.count());
    for (std::uint64_t i = 0; i < object.count(); ++i) {
      auto key = read(object.key(i), depth + 1, offset);
      if (!key) return std::move(key.failure());
      const std::string* text = (*key)->value->text();
      if (!text) return errorAtByte(offset, "a dictionary key is not a string").holder();
      // Keys are copied, not shared.
      keyBytes_ += text->size();
      if (keyBytes_ > largestExpansion_) return errorAtByte(offset, kTooMuch).holder();
      auto value = read(object.value(i), depth + 1, offset);
      if (!value) return std::move(value.failure());
      if (!expand(made, **key) || !expand(made, **value)) return errorAtByte(offset, kTooMuch).holder();
      entries.push_back({*text, *(*value)->value});
    }
    made.value.emplace(PropertyList::Dictionary(std::move(entries)));
    return {};
  }

  // Neither term exceeds the limit, so the sum stays far below 64 bits.
  bool expand(Made& made, const Made& part) const noexcept {
    made.expansion += part.expansion;
    return made.expansion <= largestExpansion_;
  }

  static constexpr std::string_view kTooMuch = "shared objects expand beyond the size limit";

  const BinaryPropertyList& list_;
  std::vector<Made> made_;
  std::uint64_t largestExpansion_;
  std::uint64_t bytesRead_ = 0;
  std::uint64_t keyBytes_ = 0;
};

}  // namespace

Decoded<PropertyList> readBinaryPropertyList(std::span<const std::byte> bytes) {
  const auto list = BinaryPropertyList::fromData(bytes);
  if (!list) return list.error();
  return TreeReader(*list, bytes.size()).readTop();
}

}  // namespace platform
}  // namespace havrin
