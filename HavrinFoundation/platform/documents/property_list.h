// SPDX-License-Identifier: Apache-2.0
// Property lists: trees of dictionaries, arrays, text, bytes, numbers, booleans and dates, the format of settings,
// bundles and keyed archives. Reads the binary and the XML form, writes the binary form.
//
//   PropertyList::Dictionary entries;
//   entries.set("CFBundleVersion", PropertyList("612345"));
//   entries.set("favourites", PropertyList(PropertyList::Array{PropertyList("jazz"), PropertyList(3)}));
//   const std::vector<std::byte> bytes = binaryPropertyList(PropertyList(std::move(entries)));
//
//   const auto info = readPropertyList(bytes);
//   info ? std::string() : info.error().detail()                    ""
//   *info->valueForKey("CFBundleVersion")->text()                   "612345"
//   info->valueForKey("favourites")->array()->at(1).integer()       3
//   info->valueForKey("name")                                       null
//
// Input is not trusted: sizes, counts and references are checked before use, nesting and the expanded size of shared
// parts are limited, and cycles are errors.
//
// Left out: the old text form, writing XML, sets and nulls (which property lists do not have), modifying a tree in
// place.
#pragma once

#include <HavrinFoundation/platform/documents/decoding_error.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/time/date.h>

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

/// A value with everything it contains. Immutable; copies share their contents.
/// Cost: releasing and comparing use constant stack, however deep the value is.
/// Threads: a tree may be read from several threads at a time.
class HAVRIN_EXPORT PropertyList {
 public:
  /// The deepest nesting that is read.
  static constexpr std::size_t kDeepestNesting = 512;

  enum class Kind : std::uint8_t { boolean, integer, real, date, uid, text, data, array, dictionary };

  /// A reference to another object by its number, as used by keyed archives.
  struct UID {
    std::uint64_t value = 0;
    friend bool operator==(const UID&, const UID&) = default;
  };

  using Array = std::vector<PropertyList>;
  using Data = std::vector<std::byte>;
  class Dictionary;

  template <std::same_as<bool> Type>
  explicit PropertyList(Type value) : PropertyList(Kind::boolean, value) {}
  template <std::integral Type>
  requires(!std::same_as<Type, bool> && sizeof(Type) <= sizeof(std::int64_t)) explicit PropertyList(Type value)
      : PropertyList(Kind::integer, static_cast<std::uint64_t>(value)) {
    isUnsigned_ = !std::in_range<std::int64_t>(value);
  }
  explicit PropertyList(double value) : PropertyList(Kind::real, std::bit_cast<std::uint64_t>(value)) {}
  explicit PropertyList(Date value) : PropertyList(Kind::date, std::bit_cast<std::uint64_t>(value)) {}
  explicit PropertyList(UID value) : PropertyList(Kind::uid, value.value) {}
  /// UTF-8 text. Ill-formed sequences are kept in memory and written as U+FFFD.
  explicit PropertyList(std::string value);
  explicit PropertyList(std::string_view value) : PropertyList(std::string(value)) {}
  explicit PropertyList(const char* value) : PropertyList(std::string(value)) {}
  explicit PropertyList(Data value);
  explicit PropertyList(Array value);
  explicit PropertyList(Dictionary value);

  /// A moved-from value is the boolean false.
  PropertyList(const PropertyList& other);
  PropertyList(PropertyList&& other) noexcept;
  PropertyList& operator=(PropertyList other) noexcept;
  ~PropertyList();

  [[nodiscard]] Kind kind() const noexcept { return kind_; }

  /// The value. Empty when: it is of another kind.
  [[nodiscard]] std::optional<bool> boolean() const noexcept {
    return kind_ == Kind::boolean ? std::optional<bool>(bits_ != 0) : std::nullopt;
  }
  [[nodiscard]] std::optional<double> real() const noexcept { return get<double>(Kind::real); }
  [[nodiscard]] std::optional<Date> date() const noexcept { return get<Date>(Kind::date); }
  [[nodiscard]] std::optional<UID> uid() const noexcept { return get<UID>(Kind::uid); }
  /// Empty when: it is not an integer, or is outside the range of the type.
  [[nodiscard]] std::optional<std::int64_t> integer() const noexcept;
  [[nodiscard]] std::optional<std::uint64_t> unsignedInteger() const noexcept;
  /// Null when: it is of another kind.
  [[nodiscard]] const std::string* text() const noexcept { return part<std::string>(Kind::text); }
  [[nodiscard]] const Data* data() const noexcept { return part<Data>(Kind::data); }
  [[nodiscard]] const Array* array() const noexcept { return part<Array>(Kind::array); }
  [[nodiscard]] const Dictionary* dictionary() const noexcept { return part<Dictionary>(Kind::dictionary); }
  /// The value under `key`. Null when: this is not a dictionary, or does not have the key. Cost: logarithmic.
  [[nodiscard]] const PropertyList* valueForKey(std::string_view key) const noexcept;

  /// Compares kind and contents, recursively; 1, 1.0 and true differ.
  [[nodiscard]] friend bool operator==(const PropertyList& first, const PropertyList& second) {
    return first.isEqual(second);
  }

 private:
  PropertyList(Kind kind, std::uint64_t bits) noexcept : kind_(kind), bits_(bits) {}
  PropertyList(Kind kind, std::shared_ptr<const void> part) noexcept : kind_(kind), part_(std::move(part)) {}

  template <class Type>
  [[nodiscard]] std::optional<Type> get(Kind kind) const noexcept {
    return kind_ == kind ? std::optional<Type>(std::bit_cast<Type>(bits_)) : std::nullopt;
  }
  template <class Type>
  [[nodiscard]] const Type* part(Kind kind) const noexcept {
    return kind_ == kind ? static_cast<const Type*>(part_.get()) : nullptr;
  }
  [[nodiscard]] bool hasPart() const noexcept { return kind_ >= Kind::text; }
  [[nodiscard]] bool isEqual(const PropertyList& other) const;

  Kind kind_;
  bool isUnsigned_ = false;  // an integer from 2^63 on
  // Written out rather than a std::variant, which costs every file that includes this more than the rest of it.
  union {
    std::uint64_t bits_;                // up to Kind::uid
    std::shared_ptr<const void> part_;  // from Kind::text on
  };
};

/// Values under distinct keys, sorted by the bytes of the keys.
class HAVRIN_EXPORT PropertyList::Dictionary {
 public:
  struct Entry {
    std::string key;
    PropertyList value;
    friend bool operator==(const Entry&, const Entry&) = default;
  };

  Dictionary() = default;
  /// If several entries have the same key, the first is kept.
  explicit Dictionary(std::vector<Entry> entries);

  [[nodiscard]] std::span<const Entry> entries() const noexcept { return {entries_.data(), entries_.size()}; }
  /// The value under `key`. Null when: the key is missing. Cost: logarithmic.
  [[nodiscard]] const PropertyList* find(std::string_view key) const noexcept;
  /// Sets the value under `key`, replacing an existing one. Cost: linear.
  void set(std::string_view key, PropertyList value);

  friend bool operator==(const Dictionary&, const Dictionary&) = default;

 private:
  std::vector<Entry> entries_;
};

/// The property list in `bytes`, in the binary or the XML form.
/// Result: text is UTF-8, with U+FFFD for ill-formed UTF-16 of the binary form; from XML, a dictionary whose only key
/// is "CF$UID" with an integer is a UID; of equal keys the first is kept. Objects shared in the binary form stay
/// shared.
/// An error (dataCorrupted, with the line from 1, or the byte from 0) when: the bytes are in neither form or are
/// malformed; a value has no counterpart here (null, set, a dictionary key that is not a string, an integer beyond 64
/// bits); nesting exceeds PropertyList::kDeepestNesting; an object contains itself; the expanded size, with shared
/// parts counted at each occurrence, exceeds the larger of 16 MiB and 16 times the size of `bytes`; XML declares an
/// entity.
/// Cost: linear.
[[nodiscard]] HAVRIN_EXPORT Decoded<PropertyList> readPropertyList(std::span<const std::byte> bytes);

/// `list` in the binary form. Equal scalars of up to 256 bytes and shared parts are written once.
/// Cost: linear in the parts written.
[[nodiscard]] HAVRIN_EXPORT std::vector<std::byte> binaryPropertyList(const PropertyList& list);

}  // namespace platform
}  // namespace havrin
