// The binary form of property lists, object by object as they stand in the data: the reader of keyed archives finds its
// way by number and makes no tree. Internal to the layer.
//
//   const auto list = BinaryPropertyList::fromData(bytes);
//   const auto top = list->object(list->topObject());
//   if (top && top->kind() == BinaryObject::Kind::dictionary) {
//     for (std::uint64_t i = 0; i < top->count(); ++i) list->object(top->key(i)) ...
//   }
//
// Every answer was checked against the bounds of the data. What is not checked, because it takes a walk: that references
// form a tree, that keys are text, and that objects do not overlap. Who walks counts: encodedSize() summed up over the
// objects that were read, each once, stays within the size of the data, or they overlap.
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

/// One object, borrowed from the data.
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

  /// As the list reads it: `value` is a number's bits, or how many `bytes` or parts there are.
  BinaryObject(Kind kind, std::uint64_t encodedSize, std::uint64_t value, const std::byte* bytes = nullptr,
               std::uint8_t referenceSize = 0) noexcept
      : kind_(kind), referenceSize_(referenceSize), encodedSize_(encodedSize), value_(value), bytes_(bytes) {}

  /// An array or a dictionary whose parts have the numbers from `firstPart` on.
  BinaryObject(Kind kind, std::uint64_t encodedSize, std::uint64_t count, std::uint64_t firstPart) noexcept
      : kind_(kind), referenceSize_(0), encodedSize_(encodedSize), value_(count), firstPart_(firstPart) {}

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  [[nodiscard]] bool isText() const noexcept { return kind_ >= Kind::asciiText && kind_ <= Kind::utf8Text; }

  /// The value. Only of the kind that is named.
  [[nodiscard]] bool boolean() const noexcept { return value_ != 0; }
  [[nodiscard]] std::int64_t integer() const noexcept { return static_cast<std::int64_t>(value_); }
  [[nodiscard]] std::uint64_t unsignedInteger() const noexcept { return value_; }
  [[nodiscard]] double real() const noexcept { return std::bit_cast<double>(value_); }
  [[nodiscard]] Date date() const noexcept { return Date::fromTimeIntervalSinceReferenceDate(real()); }
  [[nodiscard]] std::uint64_t uid() const noexcept { return value_; }
  [[nodiscard]] std::span<const std::byte> data() const noexcept { return {bytes_, value_}; }
  /// Below U+0080 throughout; of a text in UTF-8, its bytes.
  [[nodiscard]] std::string_view asciiText() const noexcept { return {reinterpret_cast<const char*>(bytes_), value_}; }
  /// The units of a text that is not ASCII as they stand, lone surrogates too.
  [[nodiscard]] std::u16string utf16Text() const;
  /// Any text as UTF-8, lone surrogates as U+FFFD.
  [[nodiscard]] std::string text() const;

  /// How many objects an array holds, or how many keys a dictionary; bytes of data and of UTF-8, units of text.
  [[nodiscard]] std::uint64_t count() const noexcept { return value_; }
  /// The number of the object at `index` of an array; of a key and of a value of a dictionary.
  [[nodiscard]] std::uint64_t element(std::uint64_t index) const noexcept { return reference(index); }
  [[nodiscard]] std::uint64_t key(std::uint64_t index) const noexcept { return reference(index); }
  [[nodiscard]] std::uint64_t value(std::uint64_t index) const noexcept { return reference(value_ + index); }

  /// How many bytes the object takes in the data, what it refers to not counted.
  [[nodiscard]] std::uint64_t encodedSize() const noexcept { return encodedSize_; }

 private:
  [[nodiscard]] std::uint64_t reference(std::uint64_t index) const noexcept;

  Kind kind_;
  std::uint8_t referenceSize_;
  std::uint64_t encodedSize_;
  std::uint64_t value_;
  union {
    const std::byte* bytes_;
    std::uint64_t firstPart_;  // where references have no size
  };
};

/// The objects of a binary property list, by number. Refers to the data.
class HAVRIN_EXPORT BinaryPropertyList {
 public:
  /// An error when: the header or the trailer is not there, or says what cannot be.
  /// Cost: constant.
  [[nodiscard]] static Decoded<BinaryPropertyList> fromData(std::span<const std::byte> data);

  [[nodiscard]] std::uint64_t objectCount() const noexcept { return objectCount_; }
  [[nodiscard]] std::uint64_t topObject() const noexcept { return topObject_; }
  /// How many bytes all objects take together, at most.
  [[nodiscard]] std::uint64_t objectBytes() const noexcept { return tableOffset_ - kHeaderSize; }

  /// The object with this number.
  /// An error when: there is none, its place or a part of it lies outside the objects, it is no object of a property
  /// list, or a text that is marked as ASCII is not.
  /// Cost: constant, but for looking through an ASCII text.
  [[nodiscard]] Decoded<BinaryObject> object(std::uint64_t number) const;

  /// The UID that the object with this number is. Empty when: it is none. Cost: less than asking for the object.
  [[nodiscard]] std::optional<std::uint64_t> uid(std::uint64_t number) const noexcept;
  /// Whether the object with this number is this text, in UTF-8. Cost: less than asking for the object, for short ASCII.
  [[nodiscard]] bool isText(std::uint64_t number, std::string_view text) const;

  /// Where the object with this number stands, for errors of those who walk; 0 for a number that has none.
  [[nodiscard]] std::uint64_t offsetOf(std::uint64_t number) const noexcept;

 private:
  static constexpr std::uint64_t kHeaderSize = 8;

  class Cursor;

  std::span<const std::byte> data_;
  std::uint64_t objectCount_ = 0;
  std::uint64_t topObject_ = 0;
  std::uint64_t tableOffset_ = 0;  // the objects stand in front of it
  std::uint8_t offsetSize_ = 0;
  std::uint8_t referenceSize_ = 0;
};

/// What is wrong with the binary form, and at which byte.
[[nodiscard]] DecodingError errorAtByte(std::uint64_t position, std::string_view reason);

/// Whether `bytes` begin as the binary form does.
[[nodiscard]] HAVRIN_EXPORT bool isBinaryPropertyList(std::span<const std::byte> bytes) noexcept;

/// The property list that the binary form in `bytes` writes; see readPropertyList.
[[nodiscard]] Decoded<PropertyList> readBinaryPropertyList(std::span<const std::byte> bytes);

}  // namespace platform
}  // namespace havrin
