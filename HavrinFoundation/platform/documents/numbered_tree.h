// SPDX-License-Identifier: Apache-2.0
// The parts of a property list that was read from XML, by number, with the interface of BinaryPropertyList: the reader
// of keyed archives works with object numbers in both forms. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/documents/binary_property_list.h>
#include <HavrinFoundation/platform/documents/property_list.h>
#include <HavrinFoundation/platform/export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NumberedTree {
 public:
  /// The root has the number 0. Parts that are shared get a number for each occurrence.
  explicit NumberedTree(PropertyList root);
  NumberedTree(const NumberedTree&) = delete;
  NumberedTree& operator=(const NumberedTree&) = delete;

  // As in BinaryPropertyList. Requires a number that came from an object here, or 0.
  [[nodiscard]] BinaryObject object(std::uint64_t number) const;
  [[nodiscard]] std::optional<std::uint64_t> uid(std::uint64_t number) const;
  [[nodiscard]] bool isText(std::uint64_t number, std::string_view text) const;

 private:
  struct Part {
    const PropertyList* value;  // null for a key
    const std::string* text;    // of a key or a text
    std::uint64_t firstPart = 0;
  };

  PropertyList root_;
  std::vector<Part> parts_;  // those of one container are consecutive, keys before values
};

}  // namespace platform
}  // namespace havrin
