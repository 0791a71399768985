// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/archive_limits.h>

namespace havrin {
inline namespace platform {

// The minimum lets small archives share parts freely; beyond it, the factors bound the amplification.
ArchiveBudget::ArchiveBudget(std::uint64_t archiveSize)
    : room_(std::max(std::uint64_t{16} << 20, 32 * archiveSize)),
      work_(std::max(NSKeyedUnarchiver::kLargestExpansion, 8 * archiveSize)) {}

Decoded<void> ArchiveBudget::refusal(std::string_view tooMuch) { return DecodingError::dataCorrupted(tooMuch); }

ArchivedExtent ArchivedExtent::ofText(std::uint64_t units) noexcept {
  return {.expansion = static_cast<std::uint32_t>(std::min(1 + units / 8, NSKeyedUnarchiver::kLargestExpansion))};
}

ArchivedExtent ArchivedExtent::ofData(std::uint64_t bytes) noexcept { return ofText(bytes / 32); }

std::uint64_t searchWork(std::span<SoughtObject> sought) {
  std::ranges::sort(sought, {}, &SoughtObject::hash);
  std::uint64_t all = 0;
  for (std::size_t from = 0, to = 0; from < sought.size(); from = to) {
    std::uint64_t work = 0;
    for (; to < sought.size() && sought[to].hash == sought[from].hash; ++to) work += sought[to].work;
    all += std::min((to - from - 1) * work, 2 * NSKeyedUnarchiver::kLargestExpansion);
  }
  return all;
}

}  // namespace platform
}  // namespace havrin
