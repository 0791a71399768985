// SPDX-License-Identifier: Apache-2.0
// The hash table under the collections that find objects by equality: entries in the order of their insertion, found by
// their key's `hash` and `isEqual`. Up to eight entries are searched without an index.
//
//   struct Entry {
//     Strong<NSObject> key, value;
//   };
//   ObjectTable<Entry> table;
//   table.insert({key, value})            true: there was none; an entry of an equal key stays as it is
//   table.find(*key)                      Entry*, or null
//   table.erase(*key)                     optional<Entry>: the removed entry, which the caller releases
//   table.forEach([](const Entry& entry) { return entry.key != nullptr; });     false ends it
//
// The index is hash_index.h's: chosen keys do not collide in it, but keys of one hash are compared with each other.
// `hash` and `isEqual` are the keys' own code; they must not change the table. Removed entries are handed out rather
// than destroyed, so that what their release sets off finds the table whole.
// Threads: one at a time, or readers alone.
#pragma once

#include <HavrinFoundation/platform/base/hash_index.h>
#include <HavrinFoundation/platform/object/object.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

template <class Entry>
class ObjectTable {
 public:
  [[nodiscard]] std::size_t size() const { return live_; }

  [[nodiscard]] const Entry* find(const NSObject& key) const {
    const std::size_t position = locate(key);
    return position == kNone ? nullptr : &slots_[position].entry;
  }
  [[nodiscard]] Entry* find(const NSObject& key) {
    return const_cast<Entry*>(static_cast<const ObjectTable*>(this)->find(key));
  }

  /// Adds the entry unless an equal key is there.
  bool insert(Entry entry) {
    const std::uint64_t hash = entry.key->hash();
    if (locate(*entry.key, hash) != kNone) return false;
    makeRoom();
    if (!index_.isEmpty()) index_.add(hash, slots_.size());
    slots_.push_back({hash, std::move(entry)});
    ++live_;
    return true;
  }

  std::optional<Entry> erase(const NSObject& key) {
    const std::size_t position = locate(key);
    if (position == kNone) return std::nullopt;
    Slot& slot = slots_[position];
    if (!index_.isEmpty()) index_.erase(slot.hash, position);
    --live_;
    return std::exchange(slot.entry, Entry{});
  }

  void reserve(std::size_t count) {
    slots_.reserve(count);
    if (count > kUnindexed) rebuild(count);
  }

  template <class Body>
  void forEach(Body&& body) const {
    for (const Slot& slot : slots_) {
      if (slot.entry.key && !body(slot.entry)) return;
    }
  }

  /// The entry at or after `position`, counted over everything ever inserted; moves `position` behind it. Null at the
  /// end. Start from 0.
  [[nodiscard]] const Entry* next(std::size_t& position) const {
    while (position < slots_.size()) {
      const Entry& entry = slots_[position++].entry;
      if (entry.key) return &entry;
    }
    return nullptr;
  }

  /// A batch for fast enumeration: keys into `batch`, from `position` on, which moves behind them. Result: how many.
  std::size_t fill(std::span<Strong<NSObject>> batch, std::uint64_t& position) const {
    std::size_t at = position;
    std::size_t filled = 0;
    const Entry* entry = nullptr;
    while (filled < batch.size() && (entry = next(at))) batch[filled++] = entry->key;
    position = at;
    return filled;
  }

 private:
  struct Slot {
    std::uint64_t hash;
    Entry entry;  // key null: removed
  };
  // Completes the type in every file that has a table, so that a debugger can show the entries there.
  static_assert(sizeof(Slot) > sizeof(Entry));
  static constexpr std::size_t kUnindexed = 8;
  static constexpr std::size_t kNone = HashIndex::kNone;

  [[nodiscard]] std::size_t locate(const NSObject& key) const {
    if (live_ == 0) return kNone;
    if (index_.isEmpty()) {
      for (std::size_t i = 0; i < slots_.size(); ++i) {
        if (slots_[i].entry.key.get() == &key) return i;
      }
    }
    return locate(key, key.hash());
  }

  [[nodiscard]] std::size_t locate(const NSObject& key, std::uint64_t hash) const {
    const auto matches = [&](std::size_t position) {
      const Slot& slot = slots_[position];
      return slot.hash == hash && slot.entry.key && (slot.entry.key.get() == &key || slot.entry.key->isEqual(&key));
    };
    if (!index_.isEmpty()) return index_.find(hash, matches);
    for (std::size_t i = 0; i < slots_.size(); ++i) {
      if (matches(i)) return i;
    }
    return kNone;
  }

  // Every slot, removed or not, has its place in the index.
  void makeRoom() {
    const std::size_t next = slots_.size() + 1;
    if (index_.isEmpty() ? next > kUnindexed : !index_.hasRoomFor(next)) rebuild(live_ + 1);
  }

  void rebuild(std::size_t count) {
    std::erase_if(slots_, [](const Slot& slot) { return !slot.entry.key; });
    index_.clear();
    if (count <= kUnindexed) return;
    index_.reset(count);
    for (std::size_t i = 0; i < slots_.size(); ++i) index_.add(slots_[i].hash, i);
  }

  std::vector<Slot> slots_;
  HashIndex index_;  // positions in slots_; empty while few are searched without
  std::size_t live_ = 0;
};

}  // namespace platform
}  // namespace havrin
