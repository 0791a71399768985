// The bytes of a keyed archive, checked as far as that takes no walk. Internal to archives/.
//
// An archive is a property list. Its top dictionary holds "$objects", an array in which the objects stand, and "$top",
// whose values refer to them by UID, the index in the array; 0 is null. Strings, numbers and data stand there as they
// are; any other object is a dictionary of its values and, under "$class", the UID of a dictionary that names its class.
#pragma once

#include <HavrinFoundation/platform/documents/binary_property_list.h>
#include <HavrinFoundation/platform/foundation/data.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace havrin::inline platform {

class KeyedArchive {
 public:
  /// The archive in `data`. An error (dataCorrupted) when: it is not one.
  /// Cost: constant for the binary form; XML is converted to it.
  [[nodiscard]] static Decoded<std::unique_ptr<KeyedArchive>> open(NSData& data);
  KeyedArchive(const KeyedArchive&) = delete;
  KeyedArchive& operator=(const KeyedArchive&) = delete;

  /// How many bytes it came in.
  [[nodiscard]] std::uint64_t size() const { return data_->length(); }
  /// The objects by number, UIDs not meant: as in the property list.
  [[nodiscard]] const BinaryPropertyList& list() const { return list_; }
  /// How many UIDs there are, and the object that one stands for.
  [[nodiscard]] std::uint64_t count() const { return objects_.count(); }
  [[nodiscard]] Decoded<BinaryObject> object(std::uint64_t uid) const { return list_.object(objects_.element(uid)); }
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
  std::vector<std::byte> converted_;  // from XML
  BinaryPropertyList list_;
  BinaryObject objects_{BinaryObject::Kind::array, 0, 0};
  BinaryObject top_{BinaryObject::Kind::dictionary, 0, 0};
};

}  // namespace havrin::inline platform
