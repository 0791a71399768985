// Property lists: trees of dictionaries, arrays, text, bytes, numbers, booleans and dates, as settings, bundles and keyed
// archives keep them, read from either of their two forms and written in the binary one.
//
//   const auto info = readPropertyList(bytes);                      "bplist00..." or "<?xml ..."
//   if (!info) std::puts(info.error().detail().c_str());            "line 7: an element that is not closed"
//   const PropertyList* build = info->valueForKey("CFBundleVersion");
//   if (build && build->text()) ...                                 "612345"
//
//   PropertyList::Dictionary entries;
//   entries.set("favourites", PropertyList(PropertyList::Array{PropertyList("jazz"), PropertyList(3)}));
//   const std::vector<std::byte> written = binaryPropertyList(PropertyList(std::move(entries)));
//
// Reading takes nothing on trust: sizes, counts and references are checked before they are used, nesting and the size of
// what shared parts stand for are bounded, cycles are refused.
//
// Left out: the old text form, writing XML, sets and nulls (which property lists do not have), changing a tree in place.
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

/// One value and all that it holds. Copies share what they hold; nothing is changed in place.
/// Cost: releasing and comparing use constant stack, however deep the value is.
/// Threads: a tree may be read from several threads at a time.
class HAVRIN_EXPORT PropertyList {
 public:
  /// Trees deeper than this are not read.
  static constexpr std::size_t kDeepestNesting = 512;

  enum class Kind : std::uint8_t { boolean, integer, real, date, uid, text, data, array, dictionary };

  /// The number of another object, as keyed archives refer to them.
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
  /// Text in UTF-8; ill-formed parts are kept here and written as U+FFFD.
  explicit PropertyList(std::string value) : value_(std::make_shared<const std::string>(std::move(value))) {}
  explicit PropertyList(std::string_view value) : PropertyList(std::string(value)) {}
  explicit PropertyList(const char* value) : PropertyList(std::string(value)) {}
  explicit PropertyList(Data value) : value_(std::make_shared<const Data>(std::move(value))) {}
  explicit PropertyList(Array value) : value_(std::make_shared<const Array>(std::move(value))) {}
  explicit PropertyList(Dictionary value);

  /// What was moved from is the boolean false.
  PropertyList(const PropertyList& other);
  PropertyList(PropertyList&& other) noexcept;
  PropertyList& operator=(PropertyList other) noexcept;
  ~PropertyList();

  [[nodiscard]] Kind kind() const noexcept;

  /// The value, where it is of that kind.
  /// Empty when: it is of another.
  [[nodiscard]] std::optional<bool> boolean() const noexcept { return get<bool>(); }
  [[nodiscard]] std::optional<double> real() const noexcept { return get<double>(); }
  [[nodiscard]] std::optional<Date> date() const noexcept { return get<Date>(); }
  [[nodiscard]] std::optional<UID> uid() const noexcept { return get<UID>(); }
  /// Empty when: it is no integer, or lies outside the type.
  [[nodiscard]] std::optional<std::int64_t> integer() const noexcept { return get<std::int64_t>(); }
  [[nodiscard]] std::optional<std::uint64_t> unsignedInteger() const noexcept;
  /// Null when: it is of another kind.
  [[nodiscard]] const std::string* text() const noexcept { return at<std::string>(); }
  [[nodiscard]] const Data* data() const noexcept { return at<Data>(); }
  [[nodiscard]] const Array* array() const noexcept { return at<Array>(); }
  [[nodiscard]] const Dictionary* dictionary() const noexcept { return at<Dictionary>(); }
  /// The value under `key`. Null when: this is no dictionary, or has no such key.
  [[nodiscard]] const PropertyList* valueForKey(std::string_view key) const noexcept;

  /// Kind by kind and part by part; 1, 1.0 and true differ.
  [[nodiscard]] friend bool operator==(const PropertyList& first, const PropertyList& second) {
    return first.isEqual(second);
  }

 private:
  template <class Type>
  using Shared = std::shared_ptr<const Type>;
  // An unsigned integer stands here only where a signed one cannot hold the value. The order is that of Kind, but for it.
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

/// Values under different keys, in the order of the keys' bytes.
class HAVRIN_EXPORT PropertyList::Dictionary {
 public:
  struct Entry {
    std::string key;
    PropertyList value;
    friend bool operator==(const Entry&, const Entry&) = default;
  };

  Dictionary() = default;
  /// Of several entries with one key the first counts.
  explicit Dictionary(std::vector<Entry> entries);

  [[nodiscard]] std::span<const Entry> entries() const noexcept { return entries_; }
  /// Null when: there is no such key. Cost: logarithmic.
  [[nodiscard]] const PropertyList* find(std::string_view key) const noexcept;
  /// Puts `value` under `key`, in place of what stood there. Cost: linear.
  void set(std::string_view key, PropertyList value);

  friend bool operator==(const Dictionary&, const Dictionary&) = default;

 private:
  std::vector<Entry> entries_;
};

/// The property list that `bytes` hold, in the binary form or as XML.
/// Result: text is UTF-8, what is ill-formed in the binary form as U+FFFD; a dictionary whose one key is "CF$UID", with an
/// integer, is read as a UID from XML; of several equal keys the first counts. Parts that the binary form shares are shared.
/// An error (dataCorrupted, with byte or line; bytes count from 0) when: the bytes are in neither form, or break it anywhere; something is no part of property lists (null, set,
/// a key that is no text, an integer beyond 64 bits); it nests deeper than PropertyList::kDeepestNesting, holds itself, or
/// stands, shared parts counted each time, for more than 16 MiB and sixteen times its size; XML declares an entity.
/// Cost: linear.
[[nodiscard]] HAVRIN_EXPORT Decoded<PropertyList> readPropertyList(std::span<const std::byte> bytes);

/// `list` in the binary form. Equal scalars are written once, and so are parts that are shared.
/// Cost: linear in the parts written.
[[nodiscard]] HAVRIN_EXPORT std::vector<std::byte> binaryPropertyList(const PropertyList& list);

}  // namespace platform
}  // namespace havrin
