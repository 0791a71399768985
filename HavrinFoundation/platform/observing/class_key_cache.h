// SPDX-License-Identifier: Apache-2.0
// What has been found out about a key of a class, kept until the methods of any class change.
#pragma once

#include <HavrinFoundation/platform/object/class.h>

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// Values by class and key. Keep only what the program's own methods bound: keys come from files, too. Entries stay in
/// memory, so that nobody needs a lock to read them; a cache is never destroyed.
/// Cost: a hash look-up. Threads: any.
template <class Value>
class ClassKeyCache {
 public:
  /// What was found, and for which number of method changes it is good.
  class Known {
   public:
    [[nodiscard]] const Value& value() const { return value_; }
    [[nodiscard]] bool isGoodFor(std::uint64_t changes) const {
      return goodFor_.load(std::memory_order_acquire) == changes;
    }

   private:
    friend class ClassKeyCache;
    Known(std::uint64_t changes, const Value& found) : value_(found), goodFor_(changes) {}
    const Value value_;
    std::atomic<std::uint64_t> goodFor_;
  };

  /// What was found when `changes` was the number of method changes; null for nothing. Lives as long as the cache.
  [[nodiscard]] const Known* find(const ClassObject& cls, std::string_view key, std::uint64_t changes) {
    for (Entry* entry = chainOf(cls, key).load(std::memory_order_acquire); entry; entry = entry->next) {
      if (entry->isFor(cls, key) && entry->known.isGoodFor(changes)) return &entry->known;
    }
    return nullptr;
  }

  const Known* keep(const ClassObject& cls, std::string_view key, std::uint64_t changes, const Value& value) {
    std::atomic<Entry*>& chain = chainOf(cls, key);
    Entry* first = chain.load(std::memory_order_acquire);
    for (Entry* entry = first; entry; entry = entry->next) {
      // Most changes of methods change nothing about this key.
      if (entry->isFor(cls, key) && entry->known.value_ == value) {
        entry->known.goodFor_.store(changes, std::memory_order_release);
        return &entry->known;
      }
    }
    auto* entry = new Entry(cls, key, changes, value);
    do {
      entry->next = first;
    } while (!chain.compare_exchange_weak(first, entry, std::memory_order_acq_rel, std::memory_order_acquire));
    return &entry->known;
  }

 private:
  struct Entry {
    Entry(const ClassObject& ofClass, std::string_view ofKey, std::uint64_t changes, const Value& found)
        : cls(&ofClass), key(ofKey), known(changes, found) {}
    [[nodiscard]] bool isFor(const ClassObject& other, std::string_view text) const {
      return cls == &other && key == text;
    }

    const ClassObject* const cls;
    const std::string key;
    Known known;
    Entry* next = nullptr;
  };

  // Keys are short: their length and both ends tell most of them apart, and a comparison follows in any case.
  static std::uint64_t mixed(std::string_view key) {
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    if (key.size() >= sizeof first) {
      std::memcpy(&first, key.data(), sizeof first);
      std::memcpy(&last, key.data() + key.size() - sizeof last, sizeof last);
    } else {
      for (const char unit : key) first = first << 8 | static_cast<unsigned char>(unit);
    }
    return (first ^ std::rotl(last, 29) ^ key.size()) * 0x9E37'79B9'7F4A'7C15U;
  }
  std::atomic<Entry*>& chainOf(const ClassObject& cls, std::string_view key) {
    // Class objects are far apart: the bits above their tables differ.
    const std::uint64_t hash = mixed(key) + (reinterpret_cast<std::uintptr_t>(&cls) >> 12) * 0xD6E8'FEB8'6659'FD93U;
    return chains_[hash >> 54];
  }

  std::array<std::atomic<Entry*>, 1024> chains_{};
};

}  // namespace platform
}  // namespace havrin
