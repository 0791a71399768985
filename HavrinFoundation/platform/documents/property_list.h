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

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
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
  explicit PropertyList(Type value) : value_(value) {}
  template <std::integral Type>
  requires(!std::same_as<Type, bool> && sizeof(Type) <= sizeof(std::int64_t)) explicit PropertyList(Type value)
      : value_(integerOf(value)) {}
  explicit PropertyList(double value) : value_(value) {}
  explicit PropertyList(Date value) : value_(value) {}
  explicit PropertyList(UID value) : value_(value) {}
  /// UTF-8 text. Ill-formed sequences are kept in memory and written as U+FFFD.
  explicit PropertyList(std::string value) : value_(std::make_shared<const std::string>(std::move(value))) {}
  explicit PropertyList(std::string_view value) : PropertyList(std::string(value)) {}
  explicit PropertyList(const char* value) : PropertyList(std::string(value)) {}
  explicit PropertyList(Data value) : value_(std::make_shared<const Data>(std::move(value))) {}
  explicit PropertyList(Array value) : value_(std::make_shared<const Array>(std::move(value))) {}
  explicit PropertyList(Dictionary value);

  /// A moved-from value is the boolean false.
  PropertyList(const PropertyList& other);
  PropertyList(PropertyList&& other) noexcept;
  PropertyList& operator=(PropertyList other) noexcept;
  ~PropertyList();

  [[nodiscard]] Kind kind() const noexcept;

  /// The value. Empty when: it is of another kind.
  [[nodiscard]] std::optional<bool> boolean() const noexcept { return get<bool>(); }
  [[nodiscard]] std::optional<double> real() const noexcept { return get<double>(); }
  [[nodiscard]] std::optional<Date> date() const noexcept { return get<Date>(); }
  [[nodiscard]] std::optional<UID> uid() const noexcept { return get<UID>(); }
  /// Empty when: it is not an integer, or is outside the range of the type.
  [[nodiscard]] std::optional<std::int64_t> integer() const noexcept { return get<std::int64_t>(); }
  [[nodiscard]] std::optional<std::uint64_t> unsignedInteger() const noexcept;
  /// Null when: it is of another kind.
  [[nodiscard]] const std::string* text() const noexcept { return at<std::string>(); }
  [[nodiscard]] const Data* data() const noexcept { return at<Data>(); }
  [[nodiscard]] const Array* array() const noexcept { return at<Array>(); }
  [[nodiscard]] const Dictionary* dictionary() const noexcept { return at<Dictionary>(); }
  /// The value under `key`. Null when: this is not a dictionary, or does not have the key. Cost: logarithmic.
  [[nodiscard]] const PropertyList* valueForKey(std::string_view key) const noexcept;

  /// Compares kind and contents, recursively; 1, 1.0 and true differ.
  [[nodiscard]] friend bool operator==(const PropertyList& first, const PropertyList& second) {
    return first.isEqual(second);
  }

 private:
  template <class Type>
  using Shared = std::shared_ptr<const Type>;
  // In the order of Kind, except that std::uint64_t comes last; it is used only for values from 2^63 on.
  using Value = std::variant<bool, std::int64_t, double, Date, UID, Shared<std::string>, Shared<Data>, Shared<Array>,
                             Shared<Dictionary>, std::uint64_t>;

  template <class Type>
  static Value integerOf(Type value) {
    if (std::in_range<std::int64_t>(value)) return static_cast<std::int64_t>(value);
    return static_cast<std::uint64_t>(value);
  }
  template <class Type>
  [[nodiscard]] std::optional<Type> get() const noexcept {
    const Type* value = std::get_if<Type>(&value_);
    return value ? std::optional<Type>(*value) : std::nullopt;
  }
  template <class Type>
  [[nodiscard]] const Type* at() const noexcept {
    const Shared<Type>* value = std::get_if<Shared<Type>>(&value_);
    return value ? value->get() : nullptr;
  }

  [[nodiscard]] bool isEqual(const PropertyList& other) const;

  Value value_;
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

  [[nodiscard]] std::span<const Entry> entries() const noexcept { return entries_; }
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
