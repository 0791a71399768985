// SPDX-License-Identifier: Apache-2.0
// Random access to the objects of a binary property list, by object number and without building a tree: the reader of
// keyed archives needs only some of them. Internal to the layer.
//
//   const auto list = BinaryPropertyList::fromData(bytes);
//   const auto top = list->object(list->topObject());
//   if (top && top->kind() == BinaryObject::Kind::dictionary) {
//     for (std::uint64_t i = 0; i < top->count(); ++i) list->object(top->key(i)) ...
//   }
//
// Everything returned has been checked against the bounds of the data. Not checked, because it needs a walk over all
// objects: that references form a tree, that keys are text, and that objects do not overlap. Callers that walk detect
// overlap by adding up encodedSize() of each object once; a sum above objectBytes() means that objects overlap.
#pragma once

#include <HavrinFoundation/platform/documents/property_list.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/time/date.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// One object. Refers to the data and must not outlive it.
class HAVRIN_EXPORT BinaryObject {
 public:
  /// Integers from 2^63 on are unsignedInteger.
  enum class Kind : std::uint8_t {
    boolean,
    integer,
    unsignedInteger,
    real,
    date,
    uid,
    data,
    asciiText,
    utf16Text,
    utf8Text,  // in a NumberedTree alone
    array,
    dictionary
  };

  /// An object read from the list. `value` is the bits of a number, or the number of bytes, units or parts at `bytes`.
  BinaryObject(Kind kind, std::uint64_t encodedSize, std::uint64_t value, const std::byte* bytes = nullptr,
               std::uint8_t referenceSize = 0) noexcept
      : kind_(kind), referenceSize_(referenceSize), encodedSize_(encodedSize), value_(value), bytes_(bytes) {}

  /// An array or a dictionary whose parts are numbered consecutively from `firstPart`.
  BinaryObject(Kind kind, std::uint64_t encodedSize, std::uint64_t count, std::uint64_t firstPart) noexcept
      : kind_(kind), referenceSize_(0), encodedSize_(encodedSize), value_(count), firstPart_(firstPart) {}

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  [[nodiscard]] bool isText() const noexcept { return kind_ >= Kind::asciiText && kind_ <= Kind::utf8Text; }

  /// The value. Requires the kind of that name.
  [[nodiscard]] bool boolean() const noexcept { return value_ != 0; }
  [[nodiscard]] std::int64_t integer() const noexcept { return static_cast<std::int64_t>(value_); }
  [[nodiscard]] std::uint64_t unsignedInteger() const noexcept { return value_; }
  [[nodiscard]] double real() const noexcept { return std::bit_cast<double>(value_); }
  [[nodiscard]] Date date() const noexcept { return Date::fromTimeIntervalSinceReferenceDate(real()); }
  [[nodiscard]] std::uint64_t uid() const noexcept { return value_; }
  [[nodiscard]] std::span<const std::byte> data() const noexcept { return {bytes_, value_}; }
  /// The bytes of an ASCII or a UTF-8 text.
  [[nodiscard]] std::string_view asciiText() const noexcept { return {reinterpret_cast<const char*>(bytes_), value_}; }
  /// The UTF-16 units of a UTF-16 or a UTF-8 text, unchanged, lone surrogates included.
  [[nodiscard]] std::u16string utf16Text() const;
  /// Any text as UTF-8, lone surrogates as U+FFFD.
  [[nodiscard]] std::string text() const;

  /// The number of elements of an array, entries of a dictionary, bytes of data and of UTF-8, or units of other text.
  [[nodiscard]] std::uint64_t count() const noexcept { return value_; }
  /// The object number of an element of an array, or of a key or a value of a dictionary. Requires index < count().
  [[nodiscard]] std::uint64_t element(std::uint64_t index) const noexcept { return reference(index); }
  [[nodiscard]] std::uint64_t key(std::uint64_t index) const noexcept { return reference(index); }
  [[nodiscard]] std::uint64_t value(std::uint64_t index) const noexcept { return reference(value_ + index); }

  /// The size of the object in the data, in bytes, without the objects it refers to.
  [[nodiscard]] std::uint64_t encodedSize() const noexcept { return encodedSize_; }

 private:
  [[nodiscard]] std::uint64_t reference(std::uint64_t index) const noexcept;

  Kind kind_;
  std::uint8_t referenceSize_;
  std::uint64_t encodedSize_;
  std::uint64_t value_;
  union {
    const std::byte* bytes_;
    std::uint64_t firstPart_;  // if referenceSize_ is 0
  };
};

/// The objects of a binary property list, by number. Refers to the data.
class HAVRIN_EXPORT BinaryPropertyList {
 public:
  /// An error when: the header or the trailer is missing or inconsistent.
  /// Cost: constant.
  [[nodiscard]] static Decoded<BinaryPropertyList> fromData(std::span<const std::byte> data);

  [[nodiscard]] std::uint64_t objectCount() const noexcept { return objectCount_; }
  [[nodiscard]] std::uint64_t topObject() const noexcept { return topObject_; }
  /// The size of the region that holds the objects, in bytes.
  [[nodiscard]] std::uint64_t objectBytes() const noexcept { return tableOffset_ - kHeaderSize; }

  /// The object with this number.
  /// An error when: the number is out of range, the object is not wholly inside the region of the objects, its type is
  /// unknown, or an ASCII text has a byte above 0x7F.
  /// Cost: constant, except that an ASCII text is scanned.
  [[nodiscard]] Decoded<BinaryObject> object(std::uint64_t number) const;

  /// The value of the UID object with this number. Empty when: the object is not a UID. Cost: less than object().
  [[nodiscard]] std::optional<std::uint64_t> uid(std::uint64_t number) const noexcept;
  /// Whether the object with this number is the UTF-8 `text`. Cost: less than object() for short ASCII.
  [[nodiscard]] bool isText(std::uint64_t number, std::string_view text) const;

  /// The byte offset of the object with this number, for error texts; 0 if the number is out of range.
  [[nodiscard]] std::uint64_t offsetOf(std::uint64_t number) const noexcept;

 private:
  static constexpr std::uint64_t kHeaderSize = 8;

  class Cursor;

  std::span<const std::byte> data_;
  std::uint64_t objectCount_ = 0;
  std::uint64_t topObject_ = 0;
  std::uint64_t tableOffset_ = 0;  // where the objects end
  std::uint8_t offsetSize_ = 0;
  std::uint8_t referenceSize_ = 0;
};

/// The error dataCorrupted "byte <position>: <reason>".
[[nodiscard]] DecodingError errorAtByte(std::uint64_t position, std::string_view reason);

/// Whether `bytes` begin with the magic number of the binary form.
[[nodiscard]] HAVRIN_EXPORT bool isBinaryPropertyList(std::span<const std::byte> bytes) noexcept;

/// Reads the binary form; see readPropertyList.
[[nodiscard]] Decoded<PropertyList> readBinaryPropertyList(std::span<const std::byte> bytes);

}  // namespace platform
}  // namespace havrin
