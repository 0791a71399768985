// What a CharacterSet shares: one bit per scalar in pages of 256, of which empty and full ones are not stored, and the
// members below U+0080 once more in the form that the wide search loads. For the sources of CharacterSet only.
#pragma once

#include <HavrinFoundation/platform/foundation/character_set.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

namespace havrin::inline platform {

namespace detail {

/// Bit h of row l is set when U+00hl is a member: l is the low half of the byte, h, at most 7, the high half.
using AsciiRows = std::array<std::uint8_t, 16>;

}  // namespace detail

class CharacterSet::Storage {
 public:
  using Page = std::array<std::uint64_t, 4>;
  static constexpr std::size_t kPageCount = 0x1100;

  Storage() = default;
  Storage(const Storage& other) : index_(other.index_), pages_(other.pages_), asciiRows_(other.asciiRows_) {}
  Storage& operator=(const Storage&) = delete;

  /// The bit of any value up to U+10FFFF; surrogates have bits that mean nothing.
  bool bit(char32_t scalar) const noexcept {
    return (pages_[index_[scalar >> 8]][(scalar >> 6) & 3] >> (scalar & 63)) & 1;
  }
  const Page& page(std::size_t number) const noexcept { return pages_[index_[number]]; }
  const detail::AsciiRows& asciiRows() const noexcept { return asciiRows_; }

  void setBits(ClosedRange<char32_t> range, bool value);
  void setPage(std::size_t number, const Page& page);
  /// Brings asciiRows() up to date; due after changes and before the storage is searched.
  void refreshAsciiRows() noexcept;

  void retain() noexcept { references_.fetch_add(1, std::memory_order_relaxed); }
  /// Whether that was the last reference.
  bool release() noexcept { return references_.fetch_sub(1, std::memory_order_acq_rel) == 1; }
  bool isShared() const noexcept { return references_.load(std::memory_order_acquire) != 1; }

 private:
  static constexpr Page kNone{0, 0, 0, 0};
  static constexpr Page kAll{~0ull, ~0ull, ~0ull, ~0ull};
  static constexpr std::uint16_t kNoneIndex = 0, kAllIndex = 1;

  Page& editablePage(std::size_t number);

  std::atomic<std::uint32_t> references_{1};
  std::array<std::uint16_t, kPageCount> index_{};
  std::vector<Page> pages_{kNone, kAll};
  detail::AsciiRows asciiRows_{};
};

}  // namespace havrin::inline platform
