// SPDX-License-Identifier: Apache-2.0
// What a CharacterSet shares: a bit for each scalar, in planes of 65,536 of which empty ones beyond the first are not
// stored, and the members below U+0080 once more in the form that the wide search loads. For the sources of
// CharacterSet only.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/base/wide_instructions.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

namespace havrin::detail {

class CharacterSetStorage {
 public:
  /// Bit b of word w is the scalar 64 w + b of its plane.
  using Plane = std::array<std::uint64_t, 1024>;
  static constexpr std::size_t kPlanes = 17;

  CharacterSetStorage() = default;
  CharacterSetStorage(const CharacterSetStorage& other);
  CharacterSetStorage& operator=(const CharacterSetStorage&) = delete;

  /// The bit of any value up to U+10FFFF; surrogates have bits that mean nothing.
  bool bit(char32_t scalar) const noexcept {
    const Plane& words = scalar < 0x10000 ? basic_ : plane(scalar >> 16);
    return (words[(scalar >> 6) & 1023] >> (scalar & 63)) & 1;
  }
  /// The first plane, where nearly all text lies.
  const Plane& basic() const noexcept { return basic_; }
  const Plane& plane(std::size_t number) const noexcept;
  bool hasPlane(std::size_t number) const noexcept { return number == 0 || higher_[number - 1] != nullptr; }
  Plane& editablePlane(std::size_t number);
  const AsciiRows& asciiRows() const noexcept { return asciiRows_; }

  void setBits(ClosedRange<char32_t> range, bool value);
  /// Brings asciiRows() up to date; due after changes and before the storage is searched.
  void refreshAsciiRows() noexcept;

  void retain() noexcept { references_.fetch_add(1, std::memory_order_relaxed); }
  /// Whether that was the last reference.
  bool release() noexcept { return references_.fetch_sub(1, std::memory_order_acq_rel) == 1; }
  bool isShared() const noexcept { return references_.load(std::memory_order_acquire) != 1; }

 private:
  std::atomic<std::uint32_t> references_{1};
  AsciiRows asciiRows_{};
  std::array<std::unique_ptr<Plane>, kPlanes - 1> higher_;
  Plane basic_{};
};

}  // namespace havrin::detail
