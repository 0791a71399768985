// The parts of a property list by number, as the binary form numbers its objects: for the reader of keyed archives,
// which finds its way by number, over what was read from XML. For the project's own sources.
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
  /// The root is 0. Shared parts are numbered each time they occur.
  explicit NumberedTree(PropertyList root);
  NumberedTree(const NumberedTree&) = delete;
  NumberedTree& operator=(const NumberedTree&) = delete;

  // As of BinaryPropertyList. Numbers come from objects, so that there is always one.
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
  std::vector<Part> parts_;  // those of a container in a row, keys before values
};

}  // namespace platform
}  // namespace havrin
