// SPDX-License-Identifier: Apache-2.0
// The delayed work of one mode of one run loop. Internal to the layer; used on one thread.
//
// A heap finds the request that is due next, a hash table the requests with a key. Debouncing moves one request's
// deadline repeatedly, nearly always later. So a request's place in the heap may be earlier than its deadline: moving
// it later, or cancelling it, writes the request alone, and adding it again reuses its place. Such a place is corrected
// when it comes to the top of the heap, or when there are too many of them.
#pragma once

#include <HavrinFoundation/platform/base/hash_index.h>
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
  DelayedPerforms() = default;
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

  [[nodiscard]] static std::uint64_t hashOf(const void* target, const void* selector);
  [[nodiscard]] std::size_t positionOf(const void* target, const void* selector) const;
  [[nodiscard]] Request* firstWith(const void* target, const void* selector) const;
  void link(Request* request);
  void unlink(Request* request);
  void makeRoom();

  void moveTo(Request* request, DueTime due);
  void siftUp(std::size_t place);
  void siftDown(std::size_t place);
  void put(std::size_t place, const Place& entry);
  void removeTop();
  void removeCancelledIfMany();
  [[nodiscard]] Work withdraw(Request* request);

  std::vector<Place> heap_;
  std::vector<Request*> byKey_;  // the first request of each key; null where its last one has gone
  HashIndex index_;              // the positions in it
  std::size_t waiting_ = 0;
};

// Inline: a burst of debounced calls comes through here, a call each.

inline std::uint64_t DelayedPerforms::hashOf(const void* target, const void* selector) {
  const auto a = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(target));
  const auto b = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(selector));
  return a ^ (b << 21 | b >> 43);
}

inline std::size_t DelayedPerforms::positionOf(const void* target, const void* selector) const {
  return index_.find(hashOf(target, selector), [&](std::size_t position) {
    const Request* first = byKey_[position];
    return first != nullptr && first->key.target == target && first->key.selector == selector;
  });
}

inline DelayedPerforms::Request* DelayedPerforms::firstWith(const void* target, const void* selector) const {
  if (index_.isEmpty()) return nullptr;
  const std::size_t position = positionOf(target, selector);
  return position == HashIndex::kNone ? nullptr : byKey_[position];
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
