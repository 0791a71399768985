// What an archive may ask of its reader, for the reader and the writer: what would not be read is not written. Internal
// to archives/.
#pragma once

#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/documents/decoding_error.h>

#include <algorithm>
#include <cstdint>
#include <span>

namespace havrin {
inline namespace platform {

/// About what things take in memory, in bytes.
inline constexpr std::uint64_t kArchivedObjectSize = 64;   // an object, whatever it holds
inline constexpr std::uint64_t kArchivedElementSize = 8;   // an element of an array
inline constexpr std::uint64_t kArchivedMemberSize = 40;   // a member of a set, or a key
inline constexpr std::uint64_t kArchivedKeyPartSize = 32;  // a part of a key, which is copied
inline constexpr std::uint64_t kArchivedRunSize = 64;      // a run of attributes

/// The memory and the work that an archive may take, in proportion to its size.
class ArchiveBudget {
 public:
  explicit ArchiveBudget(std::uint64_t archiveSize);

  /// Counts `bytes` of what is made. An error when: that is too much.
  [[nodiscard]] Decoded<void> takeRoom(std::uint64_t bytes) {
    return take(room_, bytes, "the objects stand for more than an archive of this size should hold");
  }
  /// The same for parts that are hashed or compared.
  [[nodiscard]] Decoded<void> takeWork(std::uint64_t parts) {
    return take(work_, parts, "telling the objects apart takes more than an archive of this size should need");
  }

  [[nodiscard]] static Decoded<void> refusal(std::string_view tooMuch);

 private:
  static Decoded<void> take(std::uint64_t& left, std::uint64_t amount, std::string_view tooMuch) {
    if (amount > left) [[unlikely]]
      return refusal(tooMuch);
    left -= amount;
    return {};
  }

  std::uint64_t room_;
  std::uint64_t work_;
};

/// How much an object holds, itself counted: what bounds the walks over it (hashing, comparing, describing).
struct ArchivedExtent {
  // The parts, and parts of parts, shared ones each time; of a set and of keys each once more for every other one of its
  // hash, with which it is compared. 8 units of text are a part, and 256 bytes of data.
  std::uint32_t expansion = 1;
  std::uint16_t height = 0;  // how deep they nest

  /// Adds a part, or so much work. An error when: that is too much.
  [[nodiscard]] Decoded<void> add(const ArchivedExtent& part) {
    height = std::max<std::uint16_t>(height, static_cast<std::uint16_t>(part.height + 1));
    if (height > NSKeyedUnarchiver::kDeepestNesting) [[unlikely]]
      return ArchiveBudget::refusal("objects nest too deep");
    return add(part.expansion);
  }
  [[nodiscard]] Decoded<void> add(std::uint64_t work) {
    if (work > NSKeyedUnarchiver::kLargestExpansion - expansion) [[unlikely]]
      return ArchiveBudget::refusal("shared parts that stand for too much");
    expansion += static_cast<std::uint32_t>(work);
    return {};
  }
  [[nodiscard]] static ArchivedExtent ofText(std::uint64_t units) noexcept;
  [[nodiscard]] static ArchivedExtent ofData(std::uint64_t bytes) noexcept;
};

/// A member of a set, or a key.
struct SoughtObject {
  std::uint64_t hash;
  std::uint64_t work;  // its expansion
};
/// What telling the objects of a row apart takes: each is compared with those of its hash, again whenever the collection
/// is compared with another. Sorts the row.
[[nodiscard]] std::uint64_t searchWork(std::span<SoughtObject> sought);

}  // namespace platform
}  // namespace havrin
