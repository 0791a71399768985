// SPDX-License-Identifier: Apache-2.0
// Answers worked out from a text that rarely changes, such as an environment variable. Internal.
//
//   constinit TextCache<const ZoneRules*> zones;
//   zones.get("Asia/Tokyo", readRules)     calls readRules the first time, then compares one text
#pragma once

#include <HavrinFoundation/platform/base/unfair_lock_word.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// A memory of texts and the answers to them. `Value` is a pointer or a number; its zero means "no answer yet".
/// Nothing is ever destroyed. A flood of different texts is answered, but no more than `kLimit` are remembered.
template <class Value>
class TextCache {
 public:
  static constexpr std::size_t kLimit = 512;

  constexpr TextCache() = default;

  /// The answer to `text`: remembered, or else what `make(std::string_view)` gives.
  /// Cost: a comparison with the text asked for last; a look-up under a lock where it differs.
  /// Threads: any. `make` runs under the lock.
  template <class Make>
  Value get(const char* text, Make make) {
    if (const Entry* last = last_.load(std::memory_order_acquire); last != nullptr && last->text == text) {
      if (const Value value = last->value.load(std::memory_order_acquire); value != Value{}) return value;
    }
    const UnfairLockGuard guard(lock_);
    return getLocked(text, make);
  }

  /// Forgets every answer, so that each text is asked for anew.
  void forget() {
    const UnfairLockGuard guard(lock_);
    if (entries_ == nullptr) return;
    for (auto& [text, entry] : *entries_) entry.value.store(Value{}, std::memory_order_release);
  }

 private:
  struct Entry {
    explicit Entry(std::string_view name) : text(name) {}
    const std::string text;
    std::atomic<Value> value{};
  };

  template <class Make>
  Value getLocked(std::string_view text, Make make) HAVRIN_THREAD_SAFETY(requires_capability(lock_)) {
    if (entries_ == nullptr) entries_ = new std::map<std::string, Entry, std::less<>>;
    auto found = entries_->find(text);
    if (found == entries_->end()) {
      if (entries_->size() == kLimit) return make(text);
      found = entries_->try_emplace(std::string(text), text).first;
    }
    Entry& entry = found->second;
    if (entry.value.load(std::memory_order_relaxed) == Value{}) {
      entry.value.store(make(text), std::memory_order_release);
    }
    last_.store(&entry, std::memory_order_release);
    return entry.value.load(std::memory_order_relaxed);
  }

  std::atomic<const Entry*> last_{nullptr};
  os_unfair_lock lock_;
  std::map<std::string, Entry, std::less<>>* entries_ HAVRIN_THREAD_SAFETY(guarded_by(lock_)) = nullptr;
};

}  // namespace platform
}  // namespace havrin
