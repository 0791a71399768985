// The bytes of a keyed archive, checked as far as that takes no walk. Internal to archives/.
//
// An archive is a property list. Its top dictionary holds "$objects", an array in which the objects stand, and "$top",
// whose values refer to them by UID, the index in the array; 0 is null. Strings, numbers and data stand there as they
// are; any other object is a dictionary of its values and, under "$class", the UID of a dictionary that names its class.
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

  /// How many bytes it came in.
  [[nodiscard]] std::uint64_t size() const { return data_->length(); }
  /// The objects by number, UIDs not meant: as in the property list.
  [[nodiscard]] Decoded<BinaryObject> objectAt(std::uint64_t number) const {
    return tree_ ? tree_->object(number) : list_.object(number);
  }
  [[nodiscard]] std::optional<std::uint64_t> uidAt(std::uint64_t number) const {
    return tree_ ? tree_->uid(number) : list_.uid(number);
  }
  [[nodiscard]] bool isTextAt(std::uint64_t number, std::string_view text) const {
    return tree_ ? tree_->isText(number, text) : list_.isText(number, text);
  }
  /// How many UIDs there are, and the object that one stands for.
  [[nodiscard]] std::uint64_t count() const { return objects_.count(); }
  [[nodiscard]] Decoded<BinaryObject> object(std::uint64_t uid) const { return objectAt(objects_.element(uid)); }
  /// The dictionary "$top".
  [[nodiscard]] const BinaryObject& top() const { return top_; }

  /// The number of the value under `key` in a dictionary. The search begins at `from`, which moves behind what was found:
  /// keys are mostly asked for in the order in which they stand. Empty when: there is no such key.
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
  BinaryPropertyList list_;           // of the binary form,
  std::optional<NumberedTree> tree_;  // of XML
  BinaryObject objects_{BinaryObject::Kind::array, 0, 0, nullptr};
  BinaryObject top_{BinaryObject::Kind::dictionary, 0, 0, nullptr};
};

}  // namespace platform
}  // namespace havrin
