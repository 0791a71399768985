// SPDX-License-Identifier: Apache-2.0
// The delayed work of one mode of one run loop. Internal to the layer; used on one thread.
//
// A heap finds the request that is due next, a hash table the requests with a key. Debouncing moves one request's
// deadline repeatedly, nearly always later. So a request's place in the heap may be earlier than its deadline: moving
// it later, or cancelling it, writes the request alone, and adding it again reuses its place. Such a place is corrected
// when it comes to the top of the heap, or when there are too many of them.
#pragma once

#include <HavrinFoundation/platform/dispatch/work.h>
#include <HavrinFoundation/platform/object/block.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace havrin {
inline namespace platform {

using detail::Work;

/// The identity of a delayed perform when it is cancelled: three addresses, of objects that its work keeps alive. Nothing
/// but diagnosis, which names the target's class and the selector, looks behind them.
struct PerformKey {
  const void* target = nullptr;
  const void* selector = nullptr;
  const void* argument = nullptr;
};

/// When work is due, and its rank among what is due at the same time.
struct DueTime {
  double deadline;
  std::uint64_t rank;

  friend bool operator<(const DueTime& a, const DueTime& b) {
    return a.deadline != b.deadline ? a.deadline < b.deadline : a.rank < b.rank;
  }
};

class DelayedPerforms {
 public:
  DelayedPerforms();
  ~DelayedPerforms();
  DelayedPerforms(const DelayedPerforms&) = delete;
  DelayedPerforms& operator=(const DelayedPerforms&) = delete;

  /// Adds a request; without a target it cannot be cancelled.
  void schedule(const PerformKey& key, DueTime due, Work&& work);
  /// Moves the only request that waits with this target, this selector and no argument; false when it is not the only
  /// one.
  bool postpone(const void* target, const void* selector, DueTime due);
  /// Whether a request with this target, this selector and no argument waits.
  [[nodiscard]] bool holds(const void* target, const void* selector) const;
  void cancel(const PerformKey& key, BlockView<bool(const void* argument)> sameArgument);
  void cancel(const void* target);

  /// Calls `body` with every request that waits, in no order. It must not add or cancel requests.
  void each(BlockView<void(const PerformKey& key, double deadline)> body) const;
  /// How many requests wait.
  [[nodiscard]] std::size_t size() const { return waiting_; }
  /// How many places the heap holds, those of cancelled requests included.
  [[nodiscard]] std::size_t places() const { return heap_.size(); }
  /// The due time of the request that is due first; empty when none waits.
  [[nodiscard]] std::optional<DueTime> first();
  /// Takes that request away and returns its work.
  [[nodiscard]] Work takeFirst();

 private:
  struct Request {
    PerformKey key;
    DueTime due;
    std::size_t place;  // in the heap
    Request* next;      // with the same target and selector
    Work work;          // empty: cancelled
    [[nodiscard]] bool waits() const { return static_cast<bool>(work); }
  };
  struct Place {
    DueTime due;  // never later than the request's
    Request* request;
  };

  [[nodiscard]] static std::uint64_t mixed(const void* target, const void* selector);
  [[nodiscard]] std::size_t slotOf(const void* target, const void* selector) const;
  [[nodiscard]] Request* firstWith(const void* target, const void* selector) const;
  void link(Request* request);
  void unlink(Request* request);
  void eraseSlot(std::size_t slot);
  void growSlots();

  void moveTo(Request* request, DueTime due);
  void siftUp(std::size_t place);
  void siftDown(std::size_t place);
  void put(std::size_t place, const Place& entry);
  void removeTop();
  void removeCancelledIfMany();
  [[nodiscard]] Work withdraw(Request* request);

  std::vector<Place> heap_;
  std::vector<Request*> slots_;  // the first request of each key, or null: open addressing, a power of two of them
  std::size_t usedSlots_ = 0;
  std::size_t waiting_ = 0;
};

// Inline: a burst of debounced calls comes through here, a call each.

inline std::uint64_t DelayedPerforms::mixed(const void* target, const void* selector) {
  const auto a = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(target));
  const auto b = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(selector));
  // Addresses differ in their middle bits; the product brings these to the top, from where they are taken.
  std::uint64_t hash = (a ^ (b << 21 | b >> 43)) * 0x9e37'79b9'7f4a'7c15;
  return hash ^ hash >> 32;
}

// The slot that holds the key, or the empty one where it belongs.
inline std::size_t DelayedPerforms::slotOf(const void* target, const void* selector) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = mixed(target, selector) & mask;
  while (slots_[slot] != nullptr && (slots_[slot]->key.target != target || slots_[slot]->key.selector != selector)) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

inline DelayedPerforms::Request* DelayedPerforms::firstWith(const void* target, const void* selector) const {
  return slots_[slotOf(target, selector)];
}

inline void DelayedPerforms::moveTo(Request* request, DueTime due) {
  request->due = due;
  if (due < heap_[request->place].due) {
    heap_[request->place].due = due;
    siftUp(request->place);
  }
}

inline bool DelayedPerforms::postpone(const void* target, const void* selector, DueTime due) {
  Request* only = nullptr;
  for (Request* each = firstWith(target, selector); each != nullptr; each = each->next) {
    if (!each->waits()) continue;
    if (only != nullptr) return false;
    only = each;
  }
  if (only == nullptr || only->key.argument != nullptr) return false;
  moveTo(only, due);
  return true;
}

}  // namespace platform
}  // namespace havrin
