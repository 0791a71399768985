// SPDX-License-Identifier: Apache-2.0
// The growable storage that array snapshots share.
//
// A buffer is reached through handles, which are its arrays: each is a length, and its elements are the slots before
// it. The handle whose length equals the number of filled slots may claim the next ones; any other has to copy, since
// the slots behind it are taken. So every array that has been handed out stays as it is, its elements are contiguous,
// and a chain of n additions copies a number of slots that is linear in n.
//
//   handle A, length 3     [a b c      ]
//   A claims a slot: B     [a b c d    ]     A still is a b c
//   A claims again: taken, so it copies into a buffer of its own
//   B ends                 [a b c      ]     d is released: no array holds it any more
//
// Threads: handles of one buffer may claim, be copied and end on any threads. The slots before a handle's length never
// change while it lives; with one handle alone its owner may change them.
#pragma once

#include <HavrinFoundation/platform/object/object.h>

#include <atomic>
#include <cstdint>

namespace havrin {
inline namespace platform {

class ArrayBuffer {
 public:
  using Slot = Strong<NSObject>;

  /// A buffer with one handle of length 0.
  [[nodiscard]] static ArrayBuffer* make(std::uint64_t capacity);
  /// A buffer with one handle that holds copies of these slots, and has room for at least `capacity`.
  [[nodiscard]] static ArrayBuffer* copyOf(const Slot* slots, std::uint64_t length, std::uint64_t capacity);
  /// The room that a buffer grows to when it needs `needed` slots: amortised, growth is constant per slot.
  [[nodiscard]] static std::uint64_t grownCapacity(std::uint64_t needed) { return needed < 4 ? 4 : needed * 2; }
  ArrayBuffer(const ArrayBuffer&) = delete;
  ArrayBuffer& operator=(const ArrayBuffer&) = delete;

  [[nodiscard]] Slot* slots() { return reinterpret_cast<Slot*>(this + 1); }
  [[nodiscard]] std::uint64_t capacity() const { return capacity_; }
  /// True when the caller's handle is the only one; it stays so until the caller shares it.
  [[nodiscard]] bool isSole() const { return word_.load(std::memory_order_acquire) == kOneHandle; }

  /// One more handle of the caller's `length`.
  void share(std::uint64_t length) noexcept;
  /// One more handle, `more` longer than the caller's `length`. Its new slots are memory, which the caller constructs.
  /// Result: those slots; null when they are taken or there is no room, and then there is no new handle.
  [[nodiscard]] Slot* claim(std::uint64_t length, std::uint64_t more) noexcept;
  /// Ends the caller's handle. Elements that no handle holds any more are released, the buffer with the last handle.
  void end(std::uint64_t length) noexcept;

  /// For the only handle: moves it from one length to another. The slots between are the caller's to construct or
  /// destroy.
  void resizeSole(std::uint64_t length, std::uint64_t newLength) noexcept {
    if (isCounted_) {
      --ends()[length];
      ++ends()[newLength];
    }
    filled_ = newLength;
  }
  /// For the only handle: gives its slots more room, elsewhere if need be. The result takes this buffer's place.
  [[nodiscard]] ArrayBuffer* grownSole(std::uint64_t length, std::uint64_t capacity);

 private:
  // `word_` is the number of handles times two, plus one while a thread is between `lock` and `unlock`: a few
  // instructions, in which nothing foreign runs.
  static constexpr std::uint64_t kLocked = 1;
  static constexpr std::uint64_t kOneHandle = 2;

  explicit ArrayBuffer(std::uint64_t capacity) : capacity_(capacity) {}
  [[nodiscard]] std::uint64_t lock() noexcept;
  void unlock(std::uint64_t handles) noexcept { word_.store(handles, std::memory_order_release); }
  // How many handles have exactly this length; from the first handle beside the only one on.
  [[nodiscard]] std::uint32_t* ends() { return reinterpret_cast<std::uint32_t*>(slots() + capacity_); }
  void countHandles() noexcept;
  void giveBack() noexcept;
  void destroy() noexcept;

  std::atomic<std::uint64_t> word_{kOneHandle};
  std::uint64_t filled_ = 0;
  std::uint64_t capacity_;
  bool isCounted_ = false;
};

/// How many slots have been copied from one buffer to another in this process: the measure of what chains cost.
[[nodiscard]] std::uint64_t arraySlotsCopied();

}  // namespace platform
}  // namespace havrin
