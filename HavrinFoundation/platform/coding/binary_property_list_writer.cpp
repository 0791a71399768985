// Writing the binary form of property lists.
#include <HavrinFoundation/platform/coding/property_list.h>

#include <HavrinFoundation/platform/foundation/unicode.h>

#include <algorithm>
#include <bit>
#include <unordered_map>

namespace havrin::inline platform {
namespace {

class Writer {
 public:
  std::vector<std::byte> write(const PropertyList& list) {
    numberOf(list);
    // Numbering the parts of one object appends those that are new: breadth first, without recursion.
    for (std::size_t i = 0; i < objects_.size(); ++i) {
      if (const PropertyList* container = objects_[i].container) numberParts(i, *container);
    }
    append("bplist00");
    const std::uint64_t referenceSize = widthOf(objects_.size());
    std::vector<std::uint64_t> offsets;
    offsets.reserve(objects_.size());
    for (const Object& object : objects_) {
      offsets.push_back(bytes_.size());
      append(object.container ? encoded(*object.container) : *object.scalar);
      for (std::size_t i = 0; i < object.partCount; ++i) append(parts_[object.firstPart + i], referenceSize);
    }
    const std::uint64_t tableOffset = bytes_.size();
    const std::uint64_t offsetSize = widthOf(tableOffset);
    for (const std::uint64_t offset : offsets) append(offset, offsetSize);
    append(0, 6);
    append(offsetSize, 1);
    append(referenceSize, 1);
    append(objects_.size(), 8);
    append(0, 8);
    append(tableOffset, 8);
    return std::move(bytes_);
  }

 private:
  struct Object {
    const std::string* scalar = nullptr;  // its bytes
    const PropertyList* container = nullptr;
    std::size_t firstPart = 0;  // in parts_
    std::size_t partCount = 0;
  };

  static std::uint64_t widthOf(std::uint64_t largest) noexcept {
    return std::bit_ceil(std::max<std::uint64_t>(1, (static_cast<std::uint64_t>(std::bit_width(largest)) + 7) / 8));
  }

  void append(std::string_view text) {
    for (const char c : text) bytes_.push_back(static_cast<std::byte>(c));
  }
  void append(std::uint64_t value, std::uint64_t size) {
    while (size > 0) bytes_.push_back(static_cast<std::byte>(value >> (8 * --size)));
  }

  static void appendBigEndian(std::string& text, std::uint64_t value, unsigned size) {
    while (size > 0) text += static_cast<char>(value >> (8 * --size));
  }
  // 1, 2, 4 and 8 bytes: the narrowest that holds the value without a sign; 8 for negative ones.
  static void appendInteger(std::string& text, std::uint64_t value) {
    const auto size = static_cast<unsigned>(widthOf(value));
    text += static_cast<char>(0x10 | std::countr_zero(size));
    appendBigEndian(text, value, size);
  }
  static std::string header(unsigned kind, std::uint64_t size) {
    std::string text(1, static_cast<char>(kind << 4 | (size < 15 ? size : 15)));
    if (size >= 15) appendInteger(text, size);
    return text;
  }
  static std::string number(unsigned marker, std::uint64_t bits, unsigned size) {
    std::string text(1, static_cast<char>(marker));
    appendBigEndian(text, bits, size);
    return text;
  }

  static std::string encodedText(std::string_view text) {
    if (isAscii(text)) return header(0x5, text.size()).append(text);
    const std::u16string units = utf16(text);
    std::string encoded = header(0x6, units.size());
    for (const char16_t unit : units) appendBigEndian(encoded, unit, 2);
    return encoded;
  }

  static std::string encodedInteger(const PropertyList& list) {
    std::string text;
    if (const auto value = list.integer()) {
      appendInteger(text, static_cast<std::uint64_t>(*value));
    } else {
      text += '\x14';
      appendBigEndian(text, 0, 8);
      appendBigEndian(text, *list.unsignedInteger(), 8);
    }
    return text;
  }

  // The bytes of an object up to its references.
  static std::string encoded(const PropertyList& list) {
    using Kind = PropertyList::Kind;
    switch (list.kind()) {
      case Kind::boolean:
        return std::string(1, *list.boolean() ? '\x09' : '\x08');
      case Kind::integer:
        return encodedInteger(list);
      case Kind::real:
        return number(0x23, std::bit_cast<std::uint64_t>(*list.real()), 8);
      case Kind::date:
        return number(0x33, std::bit_cast<std::uint64_t>(list.date()->timeIntervalSinceReferenceDate()), 8);
      case Kind::uid: {
        const auto size = static_cast<unsigned>(widthOf(list.uid()->value));
        return number(0x80 | (size - 1), list.uid()->value, size);
      }
      case Kind::text:
        return encodedText(*list.text());
      case Kind::data: {
        const PropertyList::Data& data = *list.data();
        return header(0x4, data.size()).append(reinterpret_cast<const char*>(data.data()), data.size());
      }
      case Kind::array:
        return header(0xA, list.array()->size());
      case Kind::dictionary:
        return header(0xD, list.dictionary()->entries().size());
    }
    return {};
  }

  // The number of the object that has these bytes and no parts.
  std::uint64_t numberOfScalar(std::string text) {
    const auto [found, isNew] = scalars_.try_emplace(std::move(text), objects_.size());
    if (isNew) objects_.push_back({.scalar = &found->first});
    return found->second;
  }

  std::uint64_t numberOf(const PropertyList& list) {
    const void* const shared = list.array() ? static_cast<const void*>(list.array()) : list.dictionary();
    if (!shared) return numberOfScalar(encoded(list));
    const auto [found, isNew] = containers_.try_emplace(shared, objects_.size());
    if (isNew) objects_.push_back({.container = &list});
    return found->second;
  }

  void numberParts(std::size_t index, const PropertyList& container) {
    objects_[index].firstPart = parts_.size();
    if (const PropertyList::Array* array = container.array()) {
      for (const PropertyList& element : *array) parts_.push_back(numberOf(element));
    } else {
      for (const auto& entry : container.dictionary()->entries())
        parts_.push_back(numberOfScalar(encodedText(entry.key)));
      for (const auto& entry : container.dictionary()->entries()) parts_.push_back(numberOf(entry.value));
    }
    objects_[index].partCount = parts_.size() - objects_[index].firstPart;
  }

  std::vector<Object> objects_;
  std::vector<std::uint64_t> parts_;                           // the references of all containers
  std::unordered_map<std::string, std::uint64_t> scalars_;     // the numbers by the bytes
  std::unordered_map<const void*, std::uint64_t> containers_;  // the numbers by what is shared
  std::vector<std::byte> bytes_;
};

}  // namespace

std::vector<std::byte> binaryPropertyList(const PropertyList& list) { return Writer().write(list); }

}  // namespace havrin::inline platform
