// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/binary_property_list.h>

#include <HavrinFoundation/platform/unicode/unicode.h>

#include <bit>
#include <cstring>

// The format, which has no published standard: "bplist00", the objects, the table of their offsets, a trailer of 32
// bytes. All numbers are big-endian. An object begins with a byte that holds its type in the upper half and a size in
// the lower half; the size 15 means that an integer object with the size follows. A reference is the number of an
// object, which is the index of its offset in the table. The trailer has 6 unused bytes, the widths of offsets and
// references, and then, in 8 bytes each, the number of objects, the number of the top object, and the offset of the
// table.

namespace havrin {
inline namespace platform {
namespace {

constexpr std::string_view kMagic = "bplist00";
constexpr std::uint64_t kTrailerSize = 32;

// The number in the `size` (1 to 8) bytes at `bytes`. Loads eight, which is safe because the trailer follows every
// number.
std::uint64_t bigEndian(const std::byte* bytes, std::uint64_t size) noexcept {
  std::uint64_t value = 0;
  std::memcpy(&value, bytes, sizeof value);
  if constexpr (std::endian::native == std::endian::little) value = __builtin_bswap64(value);
  return value >> (64 - 8 * size);
}

}  // namespace

DecodingError errorAtByte(std::uint64_t position, std::string_view reason) {
  return DecodingError::dataCorrupted("byte " + std::to_string(position) + ": " + std::string(reason));
}

std::uint64_t BinaryObject::reference(std::uint64_t index) const noexcept {
  return referenceSize_ == 0 ? firstPart_ + index : bigEndian(bytes_ + index * referenceSize_, referenceSize_);
}

std::u16string BinaryObject::utf16Text() const {
  if (kind_ == Kind::utf8Text) return utf16(asciiText());
  std::u16string units(value_, u'\0');
  for (std::uint64_t i = 0; i < value_; ++i) units[i] = static_cast<char16_t>(bigEndian(bytes_ + 2 * i, 2));
  return units;
}

std::string BinaryObject::text() const {
  return kind_ == Kind::utf16Text ? utf8(utf16Text()) : std::string(asciiText());
}

bool isBinaryPropertyList(std::span<const std::byte> bytes) noexcept {
  return bytes.size() >= kMagic.size() && std::memcmp(bytes.data(), kMagic.data(), kMagic.size()) == 0;
}

Decoded<BinaryPropertyList> BinaryPropertyList::fromData(std::span<const std::byte> data) {
  if (!isBinaryPropertyList(data)) return errorAtByte(0, "not a binary property list: \"bplist00\" is missing");
  if (data.size() < kHeaderSize + kTrailerSize) return errorAtByte(data.size(), "the data ends before its trailer");

  const std::uint64_t trailerOffset = data.size() - kTrailerSize;
  const std::byte* const trailer = data.data() + trailerOffset;
  BinaryPropertyList list;
  list.data_ = data;
  list.offsetSize_ = std::to_integer<std::uint8_t>(trailer[6]);
  list.referenceSize_ = std::to_integer<std::uint8_t>(trailer[7]);
  list.objectCount_ = bigEndian(trailer + 8, 8);
  list.topObject_ = bigEndian(trailer + 16, 8);
  list.tableOffset_ = bigEndian(trailer + 24, 8);

  if (list.offsetSize_ - 1u > 7) return errorAtByte(trailerOffset + 6, "the offset width is not 1 to 8");
  if (list.referenceSize_ - 1u > 7) return errorAtByte(trailerOffset + 7, "the reference width is not 1 to 8");
  if (list.tableOffset_ <= kHeaderSize || list.tableOffset_ > trailerOffset) {
    return errorAtByte(trailerOffset + 24, "the offset table is outside the data");
  }
  if (list.objectCount_ > (trailerOffset - list.tableOffset_) / list.offsetSize_) {
    return errorAtByte(trailerOffset + 8, "more objects than the offset table has room for");
  }
  if (list.objectCount_ > list.objectBytes()) return errorAtByte(trailerOffset + 8, "more objects than bytes");
  if (list.topObject_ >= list.objectCount_) return errorAtByte(trailerOffset + 16, "the top object does not exist");
  return list;
}

std::uint64_t BinaryPropertyList::offsetOf(std::uint64_t number) const noexcept {
  if (number >= objectCount_) return 0;
  return bigEndian(data_.data() + tableOffset_ + number * offsetSize_, offsetSize_);
}

std::optional<std::uint64_t> BinaryPropertyList::uid(std::uint64_t number) const noexcept {
  const std::uint64_t offset = offsetOf(number);
  if (offset < kHeaderSize || offset >= tableOffset_) return std::nullopt;
  const auto marker = std::to_integer<unsigned>(data_[offset]);
  const std::uint64_t size = (marker & 15) + 1;
  if (marker >> 4 != 0x8 || size > 8 || size >= tableOffset_ - offset) return std::nullopt;
  return bigEndian(data_.data() + offset + 1, size);
}

// Reads the object at an offset before the offset table. Does not check that ASCII text is ASCII.
class BinaryPropertyList::Cursor {
 public:
  Cursor(const BinaryPropertyList& list, std::uint64_t offset) noexcept : list_(list), begin_(offset), at_(offset) {}

  Decoded<BinaryObject> read() {
    const auto marker = std::to_integer<unsigned>(list_.data_[at_++]);
    const unsigned size = marker & 15;
    switch (marker >> 4) {
      case 0x0:
        if (size != 8 && size != 9) return error("null and fill bytes are not values");
        return finish(BinaryObject::Kind::boolean, size - 8);
      case 0x1:
        return readInteger(size);
      case 0x2:
        return readReal(size);
      case 0x3:
        if (size != 3) return error("invalid date width");
        return readNumber(BinaryObject::Kind::date, 8);
      case 0x4:
        return readSequence(BinaryObject::Kind::data, size, 1);
      case 0x5:
        return readSequence(BinaryObject::Kind::asciiText, size, 1);
      case 0x6:
        return readSequence(BinaryObject::Kind::utf16Text, size, 2);
      case 0x8:
        if (size > 7) return error("the UID does not fit into 64 bits");
        return readNumber(BinaryObject::Kind::uid, size + 1);
      case 0xA:
        return readSequence(BinaryObject::Kind::array, size, list_.referenceSize_);
      case 0xD:
        return readSequence(BinaryObject::Kind::dictionary, size, 2u * list_.referenceSize_);
      default:
        return error("unknown object type");
    }
  }

 private:
  static constexpr std::string_view kTooLong = "the object extends past the end of the objects";

  [[nodiscard]] DecodingError error(std::string_view reason) const { return errorAtByte(begin_, reason); }
  [[nodiscard]] std::uint64_t room() const noexcept { return list_.tableOffset_ - at_; }

  // The object whose last byte has been read. Constructed in place: a copy right after the stores would stall on them.
  Decoded<BinaryObject> finish(BinaryObject::Kind kind, std::uint64_t value) {
    return Decoded<BinaryObject>(std::in_place, kind, at_ - begin_, value);
  }

  // The number in the next `size` bytes. Requires size <= room().
  std::uint64_t take(std::uint64_t size) noexcept {
    const std::uint64_t number = bigEndian(list_.data_.data() + at_, size);
    at_ += size;
    return number;
  }

  Decoded<BinaryObject> readNumber(BinaryObject::Kind kind, std::uint64_t size) {
    if (size > room()) return error(kTooLong);
    return finish(kind, take(size));
  }

  // Integers of 1, 2 and 4 bytes are unsigned, those of 8 bytes signed; 16 bytes hold unsigned values from 2^63 on.
  Decoded<BinaryObject> readInteger(unsigned widthBits) {
    if (widthBits > 4) return error("invalid integer width");
    if (widthBits < 4) return readNumber(BinaryObject::Kind::integer, std::uint64_t{1} << widthBits);
    if (room() < 16) return error(kTooLong);
    const std::uint64_t high = take(8);
    const std::uint64_t low = take(8);
    const bool isNegative = low >> 63 != 0;
    if (high == (isNegative ? ~std::uint64_t{0} : 0)) return finish(BinaryObject::Kind::integer, low);
    if (high != 0) return error("the integer does not fit into 64 bits");
    return finish(BinaryObject::Kind::unsignedInteger, low);
  }

  Decoded<BinaryObject> readReal(unsigned widthBits) {
    if (widthBits == 3) return readNumber(BinaryObject::Kind::real, 8);
    if (widthBits != 2) return error("invalid real width");
    if (room() < 4) return error(kTooLong);
    const double value = std::bit_cast<float>(static_cast<std::uint32_t>(take(4)));
    return finish(BinaryObject::Kind::real, std::bit_cast<std::uint64_t>(value));
  }

  Decoded<BinaryObject> readSequence(BinaryObject::Kind kind, std::uint64_t count, std::uint64_t unitSize) {
    if (count == 15) {
      if (room() == 0) return error(kTooLong);
      const auto marker = std::to_integer<unsigned>(list_.data_[at_++]);
      if (marker >> 4 != 1 || (marker & 15) > 3) return error("the size is not an integer");
      const std::uint64_t width = std::uint64_t{1} << (marker & 15);
      if (width > room()) return error(kTooLong);
      count = take(width);
    }
    if (count > room() / unitSize) return error(kTooLong);
    const std::byte* const bytes = list_.data_.data() + at_;
    at_ += count * unitSize;
    return Decoded<BinaryObject>(std::in_place, kind, at_ - begin_, count, bytes, list_.referenceSize_);
  }

  const BinaryPropertyList& list_;
  std::uint64_t begin_;
  std::uint64_t at_;
};

bool BinaryPropertyList::isText(std::uint64_t number, std::string_view text) const {
  const std::uint64_t offset = offsetOf(number);
  if (offset < kHeaderSize || offset >= tableOffset_) return false;
  const auto marker = std::to_integer<unsigned>(data_[offset]);
  if (marker >> 4 == 0x5 && (marker & 15) < 15) {
    return (marker & 15) == text.size() && text.size() < tableOffset_ - offset &&
           std::memcmp(data_.data() + offset + 1, text.data(), text.size()) == 0;
  }
  // The count is compared first: a long text is neither read nor converted only to find that it differs.
  const auto object = Cursor(*this, offset).read();
  if (!object || !object->isText() || object->count() > text.size()) return false;
  return object->kind() == BinaryObject::Kind::asciiText ? object->asciiText() == text : object->text() == text;
}

Decoded<BinaryObject> BinaryPropertyList::object(std::uint64_t number) const {
  if (number >= objectCount_) return errorAtByte(tableOffset_, "reference to an object that does not exist");
  const std::uint64_t offset = offsetOf(number);
  if (offset < kHeaderSize || offset >= tableOffset_) {
    return errorAtByte(tableOffset_ + number * offsetSize_, "the offset is outside the objects");
  }
  auto object = Cursor(*this, offset).read();
  if (object && object->kind() == BinaryObject::Kind::asciiText && !isAscii(object->asciiText())) {
    return errorAtByte(offset, "the ASCII string has a byte that is not ASCII");
  }
  return object;
}

}  // namespace platform
}  // namespace havrin
