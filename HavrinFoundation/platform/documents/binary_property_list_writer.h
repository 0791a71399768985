// Writes the binary form of property lists, object by object. Internal to the layer.
//
//   BinaryPropertyListWriter list;
//   const auto name = list.text("Nord");
//   const auto names = list.array({&name, 1});
//   const std::vector<std::byte> bytes = list.finish(names);
//
// Objects are referred to by the numbers that adding them answers. Equal scalars of up to kLargestShared bytes get one
// number; larger ones stand in the list as often as they are added, so that what is read of a list is not out of all
// proportion to its size.
#pragma once

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
  /// UTF-16 units as they stand, lone surrogates too.
  Number text(std::u16string_view units);

  /// An array or a dictionary to be: a number for it, before its parts are known. It may be set again.
  Number container();
  void setArray(Number container, std::span<const Number> elements);
  /// Keys are texts; as many as values.
  void setDictionary(Number container, std::span<const Number> keys, std::span<const Number> values);

  Number array(std::span<const Number> elements);
  Number dictionary(std::span<const Number> keys, std::span<const Number> values);

  /// How many bytes a scalar takes.
  [[nodiscard]] std::uint64_t sizeOf(Number scalar) const { return objects_[scalar].byteCount; }

  /// The list whose outermost object is `top`. Every container has been set. Cost: linear.
  [[nodiscard]] std::vector<std::byte> finish(Number top) const;

 private:
  // A scalar's bytes stand in `bytes_`, what a container refers to in `parts_`.
  struct Object {
    std::size_t firstByte = 0;
    std::size_t byteCount = 0;
    std::size_t firstPart = 0;
    std::size_t partCount = 0;
    unsigned kind = 0;  // of a container, as its marker says
  };
  // A scalar in the index: most that differ are told apart without a look at their bytes.
  struct Place {
    std::uint32_t hash = 0;
    std::uint32_t number = 0;  // plus one; 0 where there is none
  };

  [[nodiscard]] std::string_view bytesOf(const Object& scalar) const {
    return std::string_view(bytes_).substr(scalar.firstByte, scalar.byteCount);
  }
  [[nodiscard]] std::uint32_t hashOf(std::string_view bytes) const;
  [[nodiscard]] Place& place(std::string_view bytes, std::uint32_t hash);
  void makeRoom();
  Number endScalar(std::size_t firstByte);
  void setParts(Number container, unsigned kind, std::span<const Number> first, std::span<const Number> second);

  std::vector<Object> objects_;
  std::string bytes_;
  std::vector<Number> parts_;
  std::vector<Place> index_;  // by the hash; a power of two, at most half full
  std::size_t indexed_ = 0;
  // What stands in a tree may come from outside: nobody can choose which scalars meet.
  std::uint64_t secret_ = hashSecret();
};

}  // namespace platform
}  // namespace havrin
