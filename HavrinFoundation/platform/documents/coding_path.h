// SPDX-License-Identifier: Apache-2.0
// The path of keys and indexes that leads to a value in decoded data.
//
//   const CodingPath path{CodingKey("stations"), CodingKey(12), CodingKey("listeners")};
//   path.description()                    "stations[12].listeners"
//   path[1].stringValue()                 "Index 12"
//   path[1].intValue()                    12
//   path[0].intValue()                    empty
//
// A type of the caller's is usable as a key if its namespace has a function `std::string_view stringValue(Key)`, for
// instance an enumeration of the keys of one object: `container.decode<std::string>(StationKey::song)`.
//
// Left out: keys whose text is derived from a number.
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

/// The text of a key that is a text already. Key types of the caller have a function of this name in their own
/// namespace.
constexpr std::string_view stringValue(std::string_view key) { return key; }

/// A type that can be used as a key: `stringValue(key)` returns its text.
template <class Key>
concept CodingKeyType = requires(const Key& key) {
  { stringValue(key) } -> std::convertible_to<std::string_view>;
};

/// A key type that can be made from a text, as `allKeys()` requires. Its namespace has a function
/// `std::optional<Key> fromStringValue(std::type_identity<Key>, std::string_view)`, empty for an unknown text.
template <class Key>
concept CodingKeyFromText = requires(std::string_view text) {
  { fromStringValue(std::type_identity<Key>{}, text) } -> std::same_as<std::optional<Key>>;
};

/// One step of a path: the name of a value in an object, or the index of an element in an array, from 0.
class HAVRIN_EXPORT CodingKey {
 public:
  explicit CodingKey(std::string_view name) : name_(name) {}
  explicit CodingKey(std::size_t index) : index_(static_cast<std::int64_t>(index)) {}

  /// The name, or "Index 3" for the fourth element of an array.
  [[nodiscard]] std::string stringValue() const;

  /// The index. Empty when: the key is a name.
  [[nodiscard]] std::optional<std::int64_t> intValue() const {
    return index_ < 0 ? std::nullopt : std::optional<std::int64_t>(index_);
  }

  friend bool operator==(const CodingKey&, const CodingKey&) = default;

 private:
  std::string name_;
  std::int64_t index_ = -1;
};

/// The keys from the top-level value to a value inside it, outermost first. Empty for the top-level value itself.
class HAVRIN_EXPORT CodingPath {
 public:
  CodingPath() = default;
  CodingPath(std::initializer_list<CodingKey> keys) : keys_(keys) {}
  explicit CodingPath(std::vector<CodingKey> keys) : keys_(std::move(keys)) {}

  [[nodiscard]] bool empty() const { return keys_.empty(); }
  [[nodiscard]] std::size_t size() const { return keys_.size(); }
  /// The key at `position`. Requires position < size().
  [[nodiscard]] const CodingKey& operator[](std::size_t position) const { return keys_[position]; }
  [[nodiscard]] auto begin() const { return keys_.begin(); }
  [[nodiscard]] auto end() const { return keys_.end(); }

  /// A readable form: "stations[12].listeners". Names that are not plain words are quoted in brackets (`["a.b"]`); the
  /// empty path is "the top level".
  [[nodiscard]] std::string description() const;

  friend bool operator==(const CodingPath&, const CodingPath&) = default;

 private:
  std::vector<CodingKey> keys_;
};

/// `text` in quotes on one line: control characters, quotes and backslashes are escaped.
[[nodiscard]] HAVRIN_EXPORT std::string quotedForReading(std::string_view text);

}  // namespace platform
}  // namespace havrin
