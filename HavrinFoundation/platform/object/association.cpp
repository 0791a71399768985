// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/association.h>

#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/object/runtime_internal.h>

#include <array>
#include <unordered_map>
#include <vector>

namespace havrin {
inline namespace platform {

namespace {

using AttachedValues = std::vector<std::pair<const void*, Strong<NSObject>>>;

// Objects are spread over a few tables so that threads seldom meet at one lock. Never destroyed.
struct Table {
  os_unfair_lock lock;
  std::unordered_map<const NSObject*, AttachedValues> values HAVRIN_THREAD_SAFETY(guarded_by(lock));
};

Table& tableOf(const NSObject* object) {
  static auto* const kTables = new std::array<Table, 16>;
  return (*kTables)[(reinterpret_cast<std::uintptr_t>(object) >> 5) % kTables->size()];
}

Strong<NSObject>* find(AttachedValues& values, const void* key) {
  for (auto& [storedKey, value] : values) {
    if (storedKey == key) return &value;
  }
  return nullptr;
}

}  // namespace

Strong<NSObject> associatedValue(const NSObject& object, Selector key) {
  if (!(headerOf(&object).weak.load(std::memory_order_relaxed) & ObjectHeader::kHasAssociations)) return nullptr;
  Table& table = tableOf(&object);
  const UnfairLockGuard guard(table.lock);
  const auto found = table.values.find(&object);
  if (found == table.values.end()) return nullptr;
  const Strong<NSObject>* value = find(found->second, key.key());
  return value ? *value : nullptr;
}

void setAssociatedValue(NSObject& object, Selector key, NSObject* value) {
  Strong<NSObject> incoming(value);  // becomes the old value, which is released after the lock
  Table& table = tableOf(&object);
  const UnfairLockGuard guard(table.lock);
  headerOf(&object).weak.fetch_or(ObjectHeader::kHasAssociations, std::memory_order_relaxed);
  AttachedValues& values = table.values[&object];
  if (Strong<NSObject>* stored = find(values, key.key())) {
    std::swap(*stored, incoming);
  } else if (incoming) {
    values.emplace_back(key.key(), std::move(incoming));
  }
}

void releaseAssociations(NSObject* object) noexcept {
  AttachedValues values;  // released after the lock
  Table& table = tableOf(object);
  const UnfairLockGuard guard(table.lock);
  if (const auto found = table.values.find(object); found != table.values.end()) {
    values = std::move(found->second);
    table.values.erase(found);
  }
}

}  // namespace platform
}  // namespace havrin
