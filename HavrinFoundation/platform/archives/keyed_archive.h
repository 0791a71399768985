// SPDX-License-Identifier: Apache-2.0
// The format of keyed archives, with checks of everything but the objects themselves. Internal to archives/.
//
// An archive is a property list. Its top dictionary holds "$objects", the array of all objects, and "$top", whose
// values refer to them by UID, the index in the array; 0 is null. Strings, numbers and data are plain values; any other
// object is a dictionary of its values and, under "$class", the UID of a dictionary that names its class.
#pragma once

#include <HavrinFoundation/platform/documents/binary_property_list.h>
#include <HavrinFoundation/platform/documents/numbered_tree.h>
#include <HavrinFoundation/platform/foundation/data.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

class KeyedArchive {
 public:
  /// The archive in `data`. An error (dataCorrupted) when: it is not one.
  /// Cost: constant for the binary form, linear for XML.
  [[nodiscard]] static Decoded<std::unique_ptr<KeyedArchive>> open(NSData& data);
  KeyedArchive(const KeyedArchive&) = delete;
  KeyedArchive& operator=(const KeyedArchive&) = delete;

  /// The size of the archive in bytes.
  [[nodiscard]] std::uint64_t size() const { return data_->length(); }
  /// The objects of the property list by object number, which is not the UID.
  [[nodiscard]] Decoded<BinaryObject> objectAt(std::uint64_t number) const {
    return tree_ ? tree_->object(number) : list_.object(number);
  }
  [[nodiscard]] std::optional<std::uint64_t> uidAt(std::uint64_t number) const {
    return tree_ ? tree_->uid(number) : list_.uid(number);
  }
  [[nodiscard]] bool isTextAt(std::uint64_t number, std::string_view text) const {
    return tree_ ? tree_->isText(number, text) : list_.isText(number, text);
  }
  /// The number of UIDs, and the object with a UID.
  [[nodiscard]] std::uint64_t count() const { return objects_.count(); }
  [[nodiscard]] Decoded<BinaryObject> object(std::uint64_t uid) const { return objectAt(objects_.element(uid)); }
  /// The dictionary "$top".
  [[nodiscard]] const BinaryObject& top() const { return top_; }

  /// The object number of the value under `key` in a dictionary. The search starts at `from` and leaves it after the
  /// key that was found: keys are mostly looked up in their order. Empty when: the key is missing.
  [[nodiscard]] std::optional<std::uint64_t> find(const BinaryObject& dictionary, std::string_view key,
                                                  std::uint64_t& from) const;
  /// The value under `key`, if it is of this kind.
  [[nodiscard]] std::optional<BinaryObject> member(const BinaryObject& dictionary, std::string_view key,
                                                   BinaryObject::Kind kind) const;

 private:
  explicit KeyedArchive(Strong<NSData> data);
  [[nodiscard]] detail::ErrorHolder readList();
  [[nodiscard]] detail::ErrorHolder findParts();

  Strong<NSData> data_;
  BinaryPropertyList list_;           // of the binary form
  std::optional<NumberedTree> tree_;  // of the XML form
  BinaryObject objects_{BinaryObject::Kind::array, 0, 0, nullptr};
  BinaryObject top_{BinaryObject::Kind::dictionary, 0, 0, nullptr};
};

}  // namespace platform
}  // namespace havrin
