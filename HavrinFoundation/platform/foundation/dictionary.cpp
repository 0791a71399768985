// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/dictionary.h>

#include <HavrinFoundation/platform/foundation/collection_hash.h>
#include <HavrinFoundation/platform/foundation/collection_nesting.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/string.h>

#include <string>

namespace havrin {
inline namespace platform {

NSDictionary::NSDictionary(std::span<const KeyAndValue> entries) {
  entries_.reserve(entries.size());
  for (const auto& [key, value] : entries) {
    if (!key) throwNullArgument(*this, "initWithObjects:forKeys:", "key");
    if (!value) throwNullArgument(*this, "initWithObjects:forKeys:", "value");
    store(key->copy(), value);
  }
}

NSDictionary::~NSDictionary() = default;

// Whether the table is all there is to it: a subclass of the program may answer objectForKey: by itself.
bool NSDictionary::isPlain() const {
  const ClassObject* cls = dispatchClass(this)->shown();
  return cls == classObject<NSDictionary>() || cls == classObject<NSMutableDictionary>();
}

bool NSDictionary::store(Strong<NSObject> key, Strong<NSObject> value) {
  if (Entry* entry = entries_.find(*key)) {
    std::swap(entry->value, value);  // the old value goes when the table is whole again
    return false;
  }
  return entries_.insert({std::move(key), std::move(value)});
}

std::uint64_t NSDictionary::count() const { return entries_.size(); }

Strong<NSObject> NSDictionary::objectForKey(const NSObject* key) const {
  const Entry* entry = key ? entries_.find(*key) : nullptr;
  return entry ? entry->value : nullptr;
}

Strong<NSArray> NSDictionary::allKeys() const {
  ArrayBuilder keys(entries_.size());
  entries_.forEach([&](const Entry& entry) {
    keys.add(entry.key);
    return true;
  });
  return keys.finish();
}

Strong<NSArray> NSDictionary::allValues() const {
  ArrayBuilder values(count());
  forEach([&](NSObject*, NSObject* value) {
    values.add(value);
    return true;
  });
  return values.finish();
}

void NSDictionary::forEach(BlockView<bool(NSObject*, NSObject*)> body) const {
  if (!isPlain()) {
    for (NSObject* key : each(this)) {
      const Strong<NSObject> value = objectForKey(key);
      if (value && !body(key, value)) return;
    }
    return;
  }
  const Strong<NSDictionary> hold(const_cast<NSDictionary*>(this));
  const std::uint64_t& counter = mutations();
  const std::uint64_t before = counter;
  std::size_t position = 0;
  while (const Entry* next = entries_.next(position)) {
    const Entry entry = *next;  // a share of its own: the body may remove it
    const bool goesOn = body(entry.key, entry.value);
    if (counter != before) throwMutatedWhileEnumerated(this);
    if (!goesOn) return;
  }
}

std::uint64_t NSDictionary::countByEnumeratingWithState(NSFastEnumerationState& state,
                                                        std::span<Strong<NSObject>> slots) const {
  state.mutations = &mutations();
  state.items = slots.data();
  if (isPlain()) return entries_.fill(slots, state.state);
  std::uint64_t filled = 0;
  const Strong<NSArray> keys = allKeys();
  const std::uint64_t end = keys->count();
  while (filled < slots.size() && state.state < end) slots[filled++] = keys->objectAtIndex(state.state++);
  return filled;
}

const std::uint64_t& NSDictionary::mutations() const {
  static constexpr std::uint64_t kNever = 0;
  return kNever;
}

bool NSDictionary::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const auto* dictionary = cast<NSDictionary>(other);
  if (!dictionary || dictionary->count() != count()) return false;
  const CollectionDepth depth;
  if (depth.isTooDeep()) return equalCollections(*this, *dictionary);
  bool same = true;
  forEach([&](NSObject* key, NSObject* value) {
    const Strong<NSObject> theirs = dictionary->objectForKey(key);
    return same = theirs && (theirs.get() == value || value->isEqual(theirs));
  });
  return same;
}

// A sum, since equal dictionaries may have their entries in another order.
std::uint64_t NSDictionary::hash() const {
  std::uint64_t hash = count();
  forEach([&hash](NSObject* key, NSObject* value) {
    hash += mixedHash(elementHash(key) * 31 + elementHash(value));
    return true;
  });
  return hash;
}

Strong<NSString> NSDictionary::description() const {
  const CollectionDepth depth;
  if (depth.isTooDeep()) return makeString("{...}");
  std::string text = "{";
  forEach([&](NSObject* key, NSObject* value) {
    if (text.size() > 1) text += "; ";
    text += utf8(*key->description()) + " = " + utf8(*value->description());
    return true;
  });
  return makeString(text + "}");
}

Strong<NSObject> NSDictionary::copy() const { return Strong<NSObject>(const_cast<NSDictionary*>(this)); }

Strong<NSObject> NSDictionary::mutableCopy() const {
  auto result = make<NSMutableDictionary>();
  result->addEntriesFromDictionary(this);
  return result;
}

void NSMutableDictionary::setObject(NSObject* value, NSObject* key) {
  if (!key) throwNullArgument(*this, "setObject:forKey:", "key");
  if (!value) throwNullArgument(*this, "setObject:forKey:", "value");
  Strong<NSObject> stored(value);
  // Replacing a value is not a mutation: an enumeration goes by the keys, which stay as they are.
  if (Entry* entry = entries_.find(*key)) {
    std::swap(entry->value, stored);
  } else {
    entries_.insert({key->copy(), std::move(stored)});
    ++mutations_;
  }
}

void NSMutableDictionary::removeObjectForKey(NSObject* key) {
  if (!key) throwNullArgument(*this, "removeObjectForKey:", "key");
  if (entries_.erase(*key)) ++mutations_;
}

void NSMutableDictionary::set(NSObject* key, NSObject* value) {
  if (value) {
    setObject(value, key);
  } else {
    removeObjectForKey(key);
  }
}

void NSMutableDictionary::addEntriesFromDictionary(const NSDictionary* other) {
  if (!other || other == this) return;
  const bool plain = isPlain();
  if (plain) entries_.reserve(entries_.size() + other->count());
  other->forEach([&](NSObject* key, NSObject* value) {
    if (plain) {
      if (store(key, value)) ++mutations_;  // the keys of a dictionary are copies already
    } else {
      setObject(value, key);
    }
    return true;
  });
}

void NSMutableDictionary::removeAllObjects() {
  if (isPlain()) {
    const ObjectTable<Entry> gone = std::exchange(entries_, {});  // released when the table is empty
    ++mutations_;
    return;
  }
  const Strong<NSArray> keys = allKeys();
  for (std::uint64_t i = 0, count = keys->count(); i < count; ++i) removeObjectForKey(keys->objectAtIndex(i));
}

Strong<NSObject> NSMutableDictionary::copy() const {
  auto result = make<NSDictionary>();
  result->entries_.reserve(count());
  forEach([&](NSObject* key, NSObject* value) {
    result->store(key, value);
    return true;
  });
  return result;
}

template ClassObject* buildClass<NSDictionary>();
template ClassObject* buildClass<NSMutableDictionary>();

}  // namespace platform
}  // namespace havrin
