#include <HavrinFoundation/platform/coding/binary_property_list_writer.h>

#include <HavrinFoundation/platform/coding/property_list.h>
#include <HavrinFoundation/platform/foundation/unicode.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace havrin::inline platform {
namespace {

using Number = BinaryPropertyListWriter::Number;

std::uint64_t widthOf(std::uint64_t largest) noexcept {
  return std::bit_ceil(std::max<std::uint64_t>(1, (static_cast<std::uint64_t>(std::bit_width(largest)) + 7) / 8));
}

void appendBigEndian(std::string& text, std::uint64_t value, std::uint64_t size) {
  while (size > 0) text += static_cast<char>(value >> (8 * --size));
}

// 1, 2, 4 and 8 bytes: the narrowest that holds the value without a sign; 8 for negative ones.
void appendInteger(std::string& text, std::uint64_t value) {
  const std::uint64_t size = widthOf(value);
  text += static_cast<char>(0x10 | std::countr_zero(size));
  appendBigEndian(text, value, size);
}

std::string header(unsigned kind, std::uint64_t size) {
  std::string text(1, static_cast<char>(kind << 4 | (size < 15 ? size : 15)));
  if (size >= 15) appendInteger(text, size);
  return text;
}

std::string number(unsigned marker, std::uint64_t bits, std::uint64_t size) {
  std::string text(1, static_cast<char>(marker));
  appendBigEndian(text, bits, size);
  return text;
}

// Walks a tree and numbers its parts breadth first, without recursion.
class TreeWriter {
 public:
  std::vector<std::byte> write(const PropertyList& list) {
    const Number top = numberOf(list);
    for (; !unset_.empty(); unset_.pop_front()) set(unset_.front().first, *unset_.front().second);
    return writer_.finish(top);
  }

 private:
  Number numberOf(const PropertyList& list) {
    using Kind = PropertyList::Kind;
    switch (list.kind()) {
      case Kind::boolean:
        return writer_.boolean(*list.boolean());
      case Kind::integer:
        return list.integer() ? writer_.integer(*list.integer()) : writer_.integer(*list.unsignedInteger());
      case Kind::real:
        return writer_.real(*list.real());
      case Kind::date:
        return writer_.date(*list.date());
      case Kind::uid:
        return writer_.uid(list.uid()->value);
      case Kind::text:
        return writer_.text(*list.text());
      case Kind::data:
        return writer_.data(*list.data());
      case Kind::array:
        return numberOfShared(list.array(), list);
      case Kind::dictionary:
        break;
    }
    return numberOfShared(list.dictionary(), list);
  }

  Number numberOfShared(const void* shared, const PropertyList& list) {
    const auto [found, isNew] = containers_.try_emplace(shared, 0);
    if (isNew) unset_.emplace_back(found->second = writer_.container(), &list);
    return found->second;
  }

  void set(Number container, const PropertyList& list) {
    std::vector<Number> parts;
    if (const PropertyList::Array* array = list.array()) {
      for (const PropertyList& element : *array) parts.push_back(numberOf(element));
      writer_.setArray(container, parts);
      return;
    }
    std::vector<Number> keys;
    for (const auto& [key, value] : list.dictionary()->entries()) {
      keys.push_back(writer_.text(std::string_view(key)));
      parts.push_back(numberOf(value));
    }
    writer_.setDictionary(container, keys, parts);
  }

  BinaryPropertyListWriter writer_;
  std::unordered_map<const void*, Number> containers_;  // the numbers by what is shared
  std::deque<std::pair<Number, const PropertyList*>> unset_;
};

}  // namespace

// Eight bytes at a time, both halves of a product with a secret folded into one.
std::size_t BinaryPropertyListWriter::SecretHash::operator()(std::string_view bytes) const {
  __extension__ using Wide = unsigned __int128;
  std::uint64_t hash = secret ^ bytes.size();
  for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), sizeof hash))) {
    std::uint64_t next = 0;
    std::memcpy(&next, bytes.data(), std::min(bytes.size(), sizeof next));
    const Wide product = Wide{hash ^ next} * secret;
    hash = static_cast<std::uint64_t>(product >> 64) ^ static_cast<std::uint64_t>(product);
  }
  return hash;
}

Number BinaryPropertyListWriter::scalar(std::string bytes) {
  if (bytes.size() > kLargestShared) {
    objects_.push_back({.bytes = largeScalars_.emplace_back(std::move(bytes)), .header = {}});
    return objects_.size() - 1;
  }
  const auto [found, isNew] = scalars_.try_emplace(std::move(bytes), objects_.size());
  if (isNew) objects_.push_back({.bytes = found->first, .header = {}});
  return found->second;
}

Number BinaryPropertyListWriter::boolean(bool value) { return scalar(std::string(1, value ? '\x09' : '\x08')); }

Number BinaryPropertyListWriter::integer(std::int64_t value) {
  std::string bytes;
  appendInteger(bytes, static_cast<std::uint64_t>(value));
  return scalar(std::move(bytes));
}

// What needs all of 64 bits takes 16 bytes, since 8 are signed.
Number BinaryPropertyListWriter::integer(std::uint64_t value) {
  if (std::in_range<std::int64_t>(value)) return integer(static_cast<std::int64_t>(value));
  std::string bytes = number(0x14, 0, 8);
  appendBigEndian(bytes, value, 8);
  return scalar(std::move(bytes));
}

Number BinaryPropertyListWriter::real(double value) {
  return scalar(number(0x23, std::bit_cast<std::uint64_t>(value), 8));
}

Number BinaryPropertyListWriter::date(Date value) {
  return scalar(number(0x33, std::bit_cast<std::uint64_t>(value.timeIntervalSinceReferenceDate()), 8));
}

Number BinaryPropertyListWriter::uid(std::uint64_t value) {
  const std::uint64_t size = widthOf(value);
  return scalar(number(0x80 | static_cast<unsigned>(size - 1), value, size));
}

Number BinaryPropertyListWriter::data(std::span<const std::byte> bytes) {
  return scalar(header(0x4, bytes.size()).append(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

Number BinaryPropertyListWriter::text(std::string_view text) {
  if (!isAscii(text)) return this->text(utf16(text));
  return scalar(header(0x5, text.size()).append(text));
}

Number BinaryPropertyListWriter::text(std::u16string_view units) {
  if (isAscii(units)) return scalar(header(0x5, units.size()).append(units.begin(), units.end()));
  std::string bytes = header(0x6, units.size());
  for (const char16_t unit : units) appendBigEndian(bytes, unit, 2);
  return scalar(std::move(bytes));
}

Number BinaryPropertyListWriter::container() {
  objects_.emplace_back();
  return objects_.size() - 1;
}

void BinaryPropertyListWriter::setParts(Number container, unsigned kind, std::size_t count,
                                        std::span<const Number> first, std::span<const Number> second) {
  Object& object = objects_[container];
  object.header = header(kind, count);
  object.firstPart = parts_.size();
  object.partCount = first.size() + second.size();
  parts_.insert(parts_.end(), first.begin(), first.end());
  parts_.insert(parts_.end(), second.begin(), second.end());
}

void BinaryPropertyListWriter::setArray(Number container, std::span<const Number> elements) {
  setParts(container, 0xA, elements.size(), elements, {});
}

void BinaryPropertyListWriter::setDictionary(Number container, std::span<const Number> keys,
                                             std::span<const Number> values) {
  setParts(container, 0xD, keys.size(), keys, values);
}

Number BinaryPropertyListWriter::array(std::span<const Number> elements) {
  const Number added = container();
  setArray(added, elements);
  return added;
}

Number BinaryPropertyListWriter::dictionary(std::span<const Number> keys, std::span<const Number> values) {
  const Number added = container();
  setDictionary(added, keys, values);
  return added;
}

std::vector<std::byte> BinaryPropertyListWriter::finish(Number top) const {
  std::string bytes = "bplist00";
  const std::uint64_t referenceSize = widthOf(objects_.size());
  std::vector<std::uint64_t> offsets;
  offsets.reserve(objects_.size());
  for (const Object& object : objects_) {
    offsets.push_back(bytes.size());
    bytes.append(object.header).append(object.bytes);
    for (std::size_t i = 0; i < object.partCount; ++i) {
      appendBigEndian(bytes, parts_[object.firstPart + i], referenceSize);
    }
  }
  const std::uint64_t tableOffset = bytes.size();
  const std::uint64_t offsetSize = widthOf(tableOffset);
  for (const std::uint64_t offset : offsets) appendBigEndian(bytes, offset, offsetSize);
  appendBigEndian(bytes, 0, 6);
  appendBigEndian(bytes, offsetSize, 1);
  appendBigEndian(bytes, referenceSize, 1);
  appendBigEndian(bytes, objects_.size(), 8);
  appendBigEndian(bytes, top, 8);
  appendBigEndian(bytes, tableOffset, 8);
  const auto* begin = reinterpret_cast<const std::byte*>(bytes.data());
  return {begin, begin + bytes.size()};
}

std::vector<std::byte> binaryPropertyList(const PropertyList& list) { return TreeWriter().write(list); }

}  // namespace havrin::inline platform
