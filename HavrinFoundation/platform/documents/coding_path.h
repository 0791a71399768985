// The keys that lead to a value in decoded data, and the path they make.
//
//   CodingPath path = error.path();       "stations", index 12, "listeners"
//   path.description()                    "stations[12].listeners"
//   path[1].stringValue()                 "Index 12"
//   path[1].intValue()                    12
//
// A type of the caller's is a key as soon as it has a text:
//
//   enum class StationKey { name, song };
//   constexpr std::string_view stringValue(StationKey key) { return key == StationKey::name ? "name" : "song"; }
//
//   container.decode<std::string>(StationKey::song)
//
// Left out: keys whose text comes from their number alone.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace havrin {
inline namespace platform {

/// The text of a key that is a text already. Types of the caller's bring a function of this name in their own namespace.
constexpr std::string_view stringValue(std::string_view key) { return key; }

/// What may stand as a key: anything for which `stringValue` gives a text.
template <class Key>
concept CodingKeyType = requires(const Key& key) {
  { stringValue(key) } -> std::convertible_to<std::string_view>;
};

/// A key type that can be made from a text: what `allKeys()` asks of a key of the caller's. Its namespace has
/// `std::optional<Key> fromStringValue(std::type_identity<Key>, std::string_view)`.
template <class Key>
concept CodingKeyFromText = requires(std::string_view text) {
  { fromStringValue(std::type_identity<Key>{}, text) } -> std::same_as<std::optional<Key>>;
};

/// One step of a path: a name in an object, or a position in an array.
class HAVRIN_EXPORT CodingKey {
 public:
  explicit CodingKey(std::string_view name) : name_(name) {}
  explicit CodingKey(std::size_t index) : index_(static_cast<std::int64_t>(index)) {}

  /// The name, or "Index 3" for the fourth element of an array.
  [[nodiscard]] std::string stringValue() const;

  /// The position. Empty when: the key is a name.
  [[nodiscard]] std::optional<std::int64_t> intValue() const {
    return index_ < 0 ? std::nullopt : std::optional<std::int64_t>(index_);
  }

  friend bool operator==(const CodingKey&, const CodingKey&) = default;

 private:
  std::string name_;
  std::int64_t index_ = -1;
};

/// The keys from the outermost value to one inside it, outermost first. Empty for the outermost value itself.
class HAVRIN_EXPORT CodingPath {
 public:
  CodingPath() = default;
  CodingPath(std::initializer_list<CodingKey> keys) : keys_(keys) {}
  explicit CodingPath(std::vector<CodingKey> keys) : keys_(std::move(keys)) {}

  [[nodiscard]] bool empty() const { return keys_.empty(); }
  [[nodiscard]] std::size_t size() const { return keys_.size(); }
  [[nodiscard]] const CodingKey& operator[](std::size_t position) const { return keys_[position]; }
  [[nodiscard]] auto begin() const { return keys_.begin(); }
  [[nodiscard]] auto end() const { return keys_.end(); }

  /// The path as a person writes it: "stations[12].listeners". A name that is no plain word stands quoted in brackets
  /// (`["a.b"]`), the empty path is "the top level".
  [[nodiscard]] std::string description() const;

  friend bool operator==(const CodingPath&, const CodingPath&) = default;

 private:
  std::vector<CodingKey> keys_;
};

/// `text` in quotes on one line: control characters, quotes and backslashes are escaped.
[[nodiscard]] HAVRIN_EXPORT std::string quotedForReading(std::string_view text);

}  // namespace platform
}  // namespace havrin
