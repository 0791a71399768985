// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/binary_property_list_writer.h>

#include <HavrinFoundation/platform/documents/property_list.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <deque>
#include <unordered_map>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

using Number = BinaryPropertyListWriter::Number;

// The types of containers in their marker bytes.
constexpr unsigned kArray = 0xA;
constexpr unsigned kDictionary = 0xD;

std::uint64_t widthOf(std::uint64_t largest) noexcept {
  return std::bit_ceil(std::max<std::uint64_t>(1, (static_cast<std::uint64_t>(std::bit_width(largest)) + 7) / 8));
}

void appendBigEndian(std::string& text, std::uint64_t value, std::uint64_t size) {
  while (size > 0) text += static_cast<char>(value >> (8 * --size));
}

// Uses the narrowest of 1, 2, 4 and 8 bytes. The narrow forms are unsigned, so negative values take 8.
void appendInteger(std::string& text, std::uint64_t value) {
  const std::uint64_t size = widthOf(value);
  text += static_cast<char>(0x10 | std::countr_zero(size));
  appendBigEndian(text, value, size);
}

void appendHeader(std::string& text, unsigned kind, std::uint64_t size) {
  text += static_cast<char>(kind << 4 | (size < 15 ? size : 15));
  if (size >= 15) appendInteger(text, size);
}

void appendReal(std::string& text, unsigned marker, double value) {
  text += static_cast<char>(marker);
  appendBigEndian(text, std::bit_cast<std::uint64_t>(value), 8);
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

// Multiplies eight bytes at a time by a secret and folds both halves of the product, so that collisions are not
// predictable from outside.
std::uint32_t BinaryPropertyListWriter::hashOf(std::string_view bytes) const {
  __extension__ using Wide = unsigned __int128;
  std::uint64_t hash = secret_ ^ bytes.size();
  for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), sizeof hash))) {
    std::uint64_t next = 0;
    std::memcpy(&next, bytes.data(), std::min(bytes.size(), sizeof next));
    const Wide product = Wide{hash ^ next} * secret_;
    hash = static_cast<std::uint64_t>(product >> 64) ^ static_cast<std::uint64_t>(product);
  }
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

void BinaryPropertyListWriter::makeRoom() {
  if (index_.hasRoomFor(indexed_ + 1)) return;
  index_.reset(indexed_ + 32);
  for (Number number = 0; number < objects_.size(); ++number) {
    const Object& one = objects_[number];
    if (one.byteCount != 0 && one.byteCount <= kLargestShared) index_.add(one.hash, number);  // none of a container
  }
}

// The number of the scalar whose bytes begin at `firstByte`; an equal earlier scalar is reused and the bytes dropped.
Number BinaryPropertyListWriter::endScalar(std::size_t firstByte) {
  Object scalar{.firstByte = firstByte, .byteCount = bytes_.size() - firstByte};
  if (scalar.byteCount <= kLargestShared) {
    makeRoom();
    const std::string_view bytes = bytesOf(scalar);
    scalar.hash = hashOf(bytes);
    const std::size_t known = index_.find(scalar.hash, [&](std::size_t number) {
      return objects_[number].hash == scalar.hash && bytesOf(objects_[number]) == bytes;
    });
    if (known != HashIndex::kNone) {
      bytes_.resize(firstByte);
      return known;
    }
    index_.add(scalar.hash, objects_.size());
    ++indexed_;
  }
  objects_.push_back(scalar);
  return objects_.size() - 1;
}

Number BinaryPropertyListWriter::boolean(bool value) {
  bytes_ += value ? '\x09' : '\x08';
  return endScalar(bytes_.size() - 1);
}

Number BinaryPropertyListWriter::integer(std::int64_t value) {
  const std::size_t begin = bytes_.size();
  appendInteger(bytes_, static_cast<std::uint64_t>(value));
  return endScalar(begin);
}

// Values from 2^63 on take 16 bytes, because integers of 8 bytes are signed.
Number BinaryPropertyListWriter::integer(std::uint64_t value) {
  if (std::in_range<std::int64_t>(value)) return integer(static_cast<std::int64_t>(value));
  const std::size_t begin = bytes_.size();
  bytes_ += '\x14';
  appendBigEndian(bytes_, 0, 8);
  appendBigEndian(bytes_, value, 8);
  return endScalar(begin);
}

Number BinaryPropertyListWriter::real(double value) {
  const std::size_t begin = bytes_.size();
  appendReal(bytes_, 0x23, value);
  return endScalar(begin);
}

Number BinaryPropertyListWriter::date(Date value) {
  const std::size_t begin = bytes_.size();
  appendReal(bytes_, 0x33, value.timeIntervalSinceReferenceDate());
  return endScalar(begin);
}

Number BinaryPropertyListWriter::uid(std::uint64_t value) {
  const std::size_t begin = bytes_.size();
  const std::uint64_t size = widthOf(value);
  bytes_ += static_cast<char>(0x80 | (size - 1));
  appendBigEndian(bytes_, value, size);
  return endScalar(begin);
}

Number BinaryPropertyListWriter::data(std::span<const std::byte> bytes) {
  const std::size_t begin = bytes_.size();
  appendHeader(bytes_, 0x4, bytes.size());
  bytes_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return endScalar(begin);
}

Number BinaryPropertyListWriter::text(std::string_view text) {
  if (!isAscii(text)) return this->text(utf16(text));
  const std::size_t begin = bytes_.size();
  appendHeader(bytes_, 0x5, text.size());
  bytes_ += text;
  return endScalar(begin);
}

Number BinaryPropertyListWriter::text(std::u16string_view units) {
  const std::size_t begin = bytes_.size();
  const bool isNarrow = isAscii(units);
  appendHeader(bytes_, isNarrow ? 0x5 : 0x6, units.size());
  for (const char16_t unit : units) appendBigEndian(bytes_, unit, isNarrow ? 1 : 2);
  return endScalar(begin);
}

Number BinaryPropertyListWriter::container() {
  objects_.emplace_back();
  return objects_.size() - 1;
}

void BinaryPropertyListWriter::setParts(Number container, unsigned kind, std::span<const Number> first,
                                        std::span<const Number> second) {
  Object& object = objects_[container];
  object.kind = kind;
  object.firstPart = parts_.size();
  object.partCount = first.size() + second.size();
  parts_.insert(parts_.end(), first.begin(), first.end());
  parts_.insert(parts_.end(), second.begin(), second.end());
}

void BinaryPropertyListWriter::setArray(Number container, std::span<const Number> elements) {
  setParts(container, kArray, elements, {});
}

void BinaryPropertyListWriter::setDictionary(Number container, std::span<const Number> keys,
                                             std::span<const Number> values) {
  setParts(container, kDictionary, keys, values);
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
  const std::uint64_t referenceSize = widthOf(objects_.size());
  std::string list = "bplist00";
  list.reserve(bytes_.size() + parts_.size() * referenceSize + objects_.size() * 8 + 40);
  std::vector<std::uint64_t> offsets;
  offsets.reserve(objects_.size());
  for (const Object& object : objects_) {
    offsets.push_back(list.size());
    if (object.kind != 0) appendHeader(list, object.kind, object.partCount / (object.kind == kDictionary ? 2 : 1));
    list += bytesOf(object);
    for (std::size_t i = 0; i < object.partCount; ++i) {
      appendBigEndian(list, parts_[object.firstPart + i], referenceSize);
    }
  }
  const std::uint64_t tableOffset = list.size();
  const std::uint64_t offsetSize = widthOf(tableOffset);
  for (const std::uint64_t offset : offsets) appendBigEndian(list, offset, offsetSize);
  appendBigEndian(list, 0, 6);
  appendBigEndian(list, offsetSize, 1);
  appendBigEndian(list, referenceSize, 1);
  appendBigEndian(list, objects_.size(), 8);
  appendBigEndian(list, top, 8);
  appendBigEndian(list, tableOffset, 8);
  const auto* begin = reinterpret_cast<const std::byte*>(list.data());
  return {begin, begin + list.size()};
}

std::vector<std::byte> binaryPropertyList(const PropertyList& list) { return TreeWriter().write(list); }

}  // namespace platform
}  // namespace havrin
