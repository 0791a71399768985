// Writes the binary form of property lists, object by object. Internal to coding/.
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

#include <HavrinFoundation/platform/foundation/random.h>
#include <HavrinFoundation/platform/time/date.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace havrin::inline platform {

class BinaryPropertyListWriter {
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

  /// How many bytes a scalar takes in the list; 0 for an array or a dictionary.
  [[nodiscard]] std::uint64_t sizeOf(Number scalar) const { return objects_[scalar].bytes.size(); }

  /// An array or a dictionary to be: a number for it, before its parts are known. It may be set again.
  Number container();
  void setArray(Number container, std::span<const Number> elements);
  /// Keys are texts; as many as values.
  void setDictionary(Number container, std::span<const Number> keys, std::span<const Number> values);

  Number array(std::span<const Number> elements);
  Number dictionary(std::span<const Number> keys, std::span<const Number> values);

  /// The list whose outermost object is `top`. Every container has been set. Cost: linear.
  [[nodiscard]] std::vector<std::byte> finish(Number top) const;

 private:
  struct Object {
    std::string_view bytes;     // of a scalar, where it is held
    std::string header;         // a container's own bytes
    std::size_t firstPart = 0;  // in parts_
    std::size_t partCount = 0;
  };

  // What stands in a tree may come from outside: nobody can choose which scalars meet.
  struct SecretHash {
    std::uint64_t secret;
    SecretHash() : secret(hashSecret()) {}
    [[nodiscard]] std::size_t operator()(std::string_view bytes) const;
  };

  Number scalar(std::string bytes);
  void setParts(Number container, unsigned kind, std::size_t count, std::span<const Number> first,
                std::span<const Number> second);

  std::vector<Object> objects_;
  std::vector<Number> parts_;  // the references of all containers
  // The numbers by the bytes, which stay where they are.
  std::unordered_map<std::string, Number, SecretHash> scalars_;
  std::deque<std::string> largeScalars_;
};

}  // namespace havrin::inline platform
