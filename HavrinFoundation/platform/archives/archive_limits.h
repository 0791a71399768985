// SPDX-License-Identifier: Apache-2.0
// The limits on archives, for the reader and the writer: an archive that would not be read is not written. Internal to
// archives/.
#pragma once

#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/documents/decoding_error.h>

#include <algorithm>
#include <cstdint>
#include <span>

namespace havrin {
inline namespace platform {

/// Approximate sizes in memory, in bytes.
inline constexpr std::uint64_t kArchivedObjectSize = 64;   // an object without its contents
inline constexpr std::uint64_t kArchivedElementSize = 8;   // an element of an array
inline constexpr std::uint64_t kArchivedMemberSize = 40;   // a member of a set, or a key
inline constexpr std::uint64_t kArchivedKeyPartSize = 32;  // a part of a key, because keys are copied
inline constexpr std::uint64_t kArchivedRunSize = 64;      // a run of attributes

/// The memory and the work that decoding an archive may take, in proportion to its size.
class ArchiveBudget {
 public:
  explicit ArchiveBudget(std::uint64_t archiveSize);

  /// Counts `bytes` of memory. An error when: the budget is exceeded.
  [[nodiscard]] Decoded<void> takeRoom(std::uint64_t bytes) {
    return take(room_, bytes, "the objects take too much memory for an archive of this size");
  }
  /// Counts `parts` that are hashed or compared. An error when: the budget is exceeded.
  [[nodiscard]] Decoded<void> takeWork(std::uint64_t parts) {
    return take(work_, parts, "too many colliding keys or set members");
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

/// The size of the object graph below an object, itself included. Bounds the cost of hashing, comparing and describing
/// it.
struct ArchivedExtent {
  // The number of parts, recursively, with shared parts counted at each occurrence. A member of a set or a key counts
  // once more for each other one with the same hash, with which it is compared. 8 units of text or 256 bytes of data
  // are a part.
  std::uint32_t expansion = 1;
  std::uint16_t height = 0;  // the depth of nesting below the object

  /// Adds a part, or an amount of work. An error when: a limit of NSKeyedUnarchiver is exceeded.
  [[nodiscard]] Decoded<void> add(const ArchivedExtent& part) {
    height = std::max<std::uint16_t>(height, static_cast<std::uint16_t>(part.height + 1));
    if (height > NSKeyedUnarchiver::kDeepestNesting) [[unlikely]]
      return ArchiveBudget::refusal("objects are nested deeper than 1024 levels");
    return add(part.expansion);
  }
  [[nodiscard]] Decoded<void> add(std::uint64_t work) {
    if (work > NSKeyedUnarchiver::kLargestExpansion - expansion) [[unlikely]]
      return ArchiveBudget::refusal("shared objects expand beyond the size limit");
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
/// The work of comparing members or keys with equal hashes: each with all others of its hash, which is repeated
/// whenever the collection is compared with another. Sorts `sought`.
[[nodiscard]] std::uint64_t searchWork(std::span<SoughtObject> sought);

}  // namespace platform
}  // namespace havrin
