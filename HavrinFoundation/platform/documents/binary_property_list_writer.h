// SPDX-License-Identifier: Apache-2.0
// Writes the binary form of property lists, object by object. Internal to the layer.
//
//   BinaryPropertyListWriter list;
//   const auto name = list.text("Nord");
//   const auto names = list.array({&name, 1});
//   const std::vector<std::byte> bytes = list.finish(names);
//
// Adding an object returns its number, by which containers refer to it. Equal scalars of up to kLargestShared bytes
// share one number. Larger ones are written each time they are added, so that a list that is read stays in proportion
// to its size.
#pragma once

#include <HavrinFoundation/platform/base/hash_index.h>
#include <HavrinFoundation/platform/base/random.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/time/date.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT BinaryPropertyListWriter {
 public:
  using Number = std::uint64_t;
  static constexpr std::size_t kLargestShared = 256;

  Number boolean(bool value);
  Number integer(std::int64_t value);
  Number integer(std::uint64_t value);
  Number real(double value);
  Number date(Date value);
  Number uid(std::uint64_t value);
  Number data(std::span<const std::byte> bytes);
  /// UTF-8, ill-formed parts as U+FFFD.
  Number text(std::string_view text);
  /// UTF-16 units, written unchanged, lone surrogates included.
  Number text(std::u16string_view units);

  /// Reserves the number of an array or a dictionary before its parts are known; setArray or setDictionary fill it in
  /// and may be called again to replace the parts.
  Number container();
  void setArray(Number container, std::span<const Number> elements);
  /// Requires keys that are texts, and as many values as keys.
  void setDictionary(Number container, std::span<const Number> keys, std::span<const Number> values);

  Number array(std::span<const Number> elements);
  Number dictionary(std::span<const Number> keys, std::span<const Number> values);

  /// The encoded size of a scalar in bytes.
  [[nodiscard]] std::uint64_t sizeOf(Number scalar) const { return objects_[scalar].byteCount; }

  /// The encoded list with `top` as its top object. Requires that every container has been set. Cost: linear.
  [[nodiscard]] std::vector<std::byte> finish(Number top) const;

 private:
  // The bytes of a scalar are in `bytes_`, the references of a container in `parts_`.
  struct Object {
    std::size_t firstByte = 0;
    std::size_t byteCount = 0;
    std::size_t firstPart = 0;
    std::size_t partCount = 0;
    unsigned kind = 0;       // the upper half of a container's marker byte; 0 for a scalar
    std::uint32_t hash = 0;  // of a scalar that is in the index; avoids most comparisons of bytes
  };

  [[nodiscard]] std::string_view bytesOf(const Object& scalar) const {
    return std::string_view(bytes_).substr(scalar.firstByte, scalar.byteCount);
  }
  [[nodiscard]] std::uint32_t hashOf(std::string_view bytes) const;
  void makeRoom();
  Number endScalar(std::size_t firstByte);
  void setParts(Number container, unsigned kind, std::span<const Number> first, std::span<const Number> second);

  std::vector<Object> objects_;
  std::string bytes_;
  std::vector<Number> parts_;
  HashIndex index_;  // the numbers of scalars that are small enough to be compared
  std::size_t indexed_ = 0;
  // The scalars may come from an attacker, who must not be able to choose colliding ones.
  std::uint64_t secret_ = hashSecret();
};

}  // namespace platform
}  // namespace havrin
