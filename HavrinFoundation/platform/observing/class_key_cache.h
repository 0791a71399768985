// What has been found out about a key of a class, kept until the methods of any class change.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <HavrinFoundation/platform/object/class.h>

namespace havrin::inline platform {

/// Values by class and key. Keep only what the program's own methods bound: keys come from files, too.
/// Cost: a hash look-up under a shared lock. Threads: any; nothing foreign runs under the lock.
template <class Value>
class ClassKeyCache {
 public:
  /// The value, found at the time when `changes` was the number of method changes.
  [[nodiscard]] std::optional<Value> find(const ClassObject& cls, std::string_view key, std::uint64_t changes) {
    const std::shared_lock guard(lock_);
    if (goodFor_ != changes) return std::nullopt;
    const auto found = values_.find({&cls, key});
    if (found == values_.end()) return std::nullopt;
    return found->second.value;
  }

  void keep(const ClassObject& cls, std::string_view key, std::uint64_t changes, const Value& value) {
    auto text = std::make_unique<std::string>(key);
    const Place place{&cls, *text};
    std::unordered_map<Place, Kept, PlaceHash> outdated;  // goes after the lock
    const std::unique_lock guard(lock_);
    if (goodFor_ < changes) {
      outdated.swap(values_);
      goodFor_ = changes;
    }
    if (goodFor_ == changes) values_.try_emplace(place, Kept{std::move(text), value});
  }

 private:
  struct Place {
    const ClassObject* cls;
    std::string_view key;
    friend bool operator==(const Place&, const Place&) = default;
  };
  struct PlaceHash {
    std::size_t operator()(const Place& place) const {
      return std::hash<std::string_view>()(place.key) ^ (reinterpret_cast<std::uintptr_t>(place.cls) >> 6);
    }
  };
  struct Kept {
    std::unique_ptr<std::string> text;
    Value value;
  };

  std::shared_mutex lock_;
  std::uint64_t goodFor_ = 0;
  std::unordered_map<Place, Kept, PlaceHash> values_;
};

}  // namespace havrin::inline platform
