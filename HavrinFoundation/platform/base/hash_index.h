// SPDX-License-Identifier: Apache-2.0
// Positions by hash: the open-addressing index behind the layer's tables. The entries themselves are the caller's, in a
// vector or wherever a position finds them. Internal to the layer.
//
//   HashIndex index;
//   index.reset(100);                        room for a hundred positions at least
//   index.add(hashOf("a"), 0);
//   index.find(hashOf("a"), [&](std::size_t position) { return entries[position].key == "a"; })     0
//
// The place of a hash in the index depends on a secret of the process: chosen hashes do not collide in it. Of positions
// with equal hashes, each is offered to `find` in turn.
// An erased position keeps its place until the next `reset`.
// Threads: one at a time, or readers alone.
#pragma once

#include <HavrinFoundation/platform/base/random.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace havrin {
inline namespace platform {

class HashIndex {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// True until the first `reset`, and after `clear`: nothing can be added or found.
  [[nodiscard]] bool isEmpty() const { return places_.empty(); }
  /// True when `count` positions, erased ones included, fill at most three quarters of it.
  [[nodiscard]] bool hasRoomFor(std::size_t count) const { return count * 4 <= places_.size() * 3; }

  /// Erases every position, and makes room for `count` and as many again.
  void reset(std::size_t count) {
    std::size_t size = 16;
    while (count * 2 > size) size *= 2;
    places_.assign(size, 0);
    multiplier_ = hashSecret();
  }
  void clear() { places_.clear(); }

  /// The first position added under this hash for which `matches(position)` is true; `kNone` for none. Other positions
  /// may be offered too, so `matches` compares the hash where that is cheaper than what it compares else.
  template <class Matches>
  [[nodiscard]] std::size_t find(std::uint64_t hash, Matches&& matches) const {
    for (std::size_t i = home(hash); places_[i] != 0; i = after(i)) {
      if (places_[i] != kErased && matches(std::size_t{places_[i]} - 1)) return places_[i] - 1;
    }
    return kNone;
  }

  /// Needs `hasRoomFor` one more.
  void add(std::uint64_t hash, std::size_t position) {
    std::size_t i = home(hash);
    while (places_[i] != 0) i = after(i);
    places_[i] = static_cast<std::uint32_t>(position + 1);
  }
  /// Erases a position that was added under this hash.
  void erase(std::uint64_t hash, std::size_t position) {
    std::size_t i = home(hash);
    while (places_[i] != position + 1) i = after(i);
    places_[i] = kErased;
  }

 private:
  static constexpr std::uint32_t kErased = 0xFFFF'FFFF;

  // The upper bits of a product with a secret odd number: two hashes meet as rarely as if it were by chance.
  [[nodiscard]] std::size_t home(std::uint64_t hash) const {
    return static_cast<std::size_t>(hash * multiplier_ >> (64 - std::countr_zero(places_.size())));
  }
  [[nodiscard]] std::size_t after(std::size_t place) const { return (place + 1) & (places_.size() - 1); }

  std::vector<std::uint32_t> places_;  // positions plus one, 0 where free; a power of two of them, or none
  std::uint64_t multiplier_ = 0;
};

}  // namespace platform
}  // namespace havrin
