// SPDX-License-Identifier: Apache-2.0
// NSDictionary and NSMutableDictionary: values found by equal keys.
//
//   Strong<NSDictionary> d = makeDictionary({{makeString("kind"), makeNumber(1)}});
//   d->objectForKey(makeString("kind"))            NSNumber 1
//   d->objectForKey(makeString("Kind"))            null: keys are compared to the letter
//
//   const auto m = make<NSMutableDictionary>();
//   m->setObject(makeNumber(1), makeString("kind"));    the key is copied, the value retained
//   m->setObject(nullptr, makeString("kind"))      throws NSException
//   m->set(makeString("kind"), nullptr);           takes the entry away
//   m->count()                                     0
//   for (NSObject* key : each(d)) ...              the keys; fast_enumeration.h
//
// Keys come in the order in which they were first set. A subclass that overrides `count`, `objectForKey` and `allKeys`
// (mutable: `setObject` and `removeObjectForKey` too) works everywhere a dictionary does.
// Left out: sorted keys, file and property-list reading (coding/ has that), key sets shared between dictionaries.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/fast_enumeration.h>
#include <HavrinFoundation/platform/foundation/object_table.h>
#include <HavrinFoundation/platform/object/block.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>

#include <cstdint>
#include <initializer_list>
#include <span>
#include <utility>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSDictionary : public Object<NSDictionary, NSObject>, public NSFastEnumeration {
 public:
  using KeyAndValue = std::pair<NSObject*, NSObject*>;

  /// The empty dictionary.
  NSDictionary() noexcept = default;
  /// Of several equal keys the first is kept with the last one's value.
  /// Throws: NSException (InvalidArgument) for a null key or value, and for a key whose class has no copies.
  explicit NSDictionary(std::span<const KeyAndValue> entries);
  explicit NSDictionary(std::initializer_list<KeyAndValue> entries)
      : NSDictionary(std::span(entries.begin(), entries.size())) {}
  ~NSDictionary() override;

  /// How many keys.
  [[nodiscard]] virtual std::uint64_t count() const;
  /// The value whose key is equal to `key`; null for none, and for a null key.
  [[nodiscard]] virtual Strong<NSObject> objectForKey(const NSObject* key) const;
  /// The keys, each once, in the order in which they were first set.
  [[nodiscard]] virtual Strong<NSArray> allKeys() const;
  /// The values, in the order of the keys.
  [[nodiscard]] Strong<NSArray> allValues() const;
  /// Calls `body` with each key and value, in the order of the keys, until it answers false.
  /// Throws: NSException (Generic) after `body` has added or removed a key.
  void forEach(BlockView<bool(NSObject*, NSObject*)> body) const;

  /// True for a dictionary with equal keys and values, mutable or not.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  /// Derived from the keys and values, except those that are collections. Cost: linear.
  [[nodiscard]] std::uint64_t hash() const override;
  /// "{key = value; key = value}". Collections nested deeper than 64 levels are shown as "...", in brackets.
  [[nodiscard]] Strong<NSString> description() const override;
  /// The dictionary itself.
  [[nodiscard]] Strong<NSObject> copy() const override;
  /// An NSMutableDictionary with the same entries.
  [[nodiscard]] Strong<NSObject> mutableCopy() const override;

  /// Hands out the keys.
  std::uint64_t countByEnumeratingWithState(NSFastEnumerationState& state,
                                            std::span<Strong<NSObject>> slots) const override;
  /// A number that changes when a key is added or removed.
  [[nodiscard]] virtual const std::uint64_t& mutations() const;

  using Protocols = List<NSSecureCoding>;

 protected:
  struct Entry {
    Strong<NSObject> key;
    Strong<NSObject> value;
  };
  /// True when the entries below are the dictionary: the class is the layer's own.
  [[nodiscard]] bool isPlain() const;
  /// Adds or replaces an entry, with a key that is already a copy; true when there was none.
  bool store(Strong<NSObject> key, Strong<NSObject> value);

  ObjectTable<Entry> entries_;

 private:
  friend class NSMutableDictionary;
};

/// Threads: one at a time.
class HAVRIN_EXPORT NSMutableDictionary : public Object<NSMutableDictionary, NSDictionary> {
 public:
  NSMutableDictionary() noexcept = default;
  explicit NSMutableDictionary(std::span<const KeyAndValue> entries) : Object(entries) {}

  /// Sets the value of `key`: an equal key that is there stays and gets the value, else a copy of `key` is added.
  /// Throws: NSException (InvalidArgument) for a null key or value, and for a key whose class has no copies.
  virtual void setObject(NSObject* value, NSObject* key);
  /// Removes the entry of `key`, if there is one. Throws: NSException (InvalidArgument) for a null key.
  virtual void removeObjectForKey(NSObject* key);

  /// `setObject`, or `removeObjectForKey` when `value` is null.
  void set(NSObject* key, NSObject* value);
  /// Sets every entry of `other`; null adds nothing.
  void addEntriesFromDictionary(const NSDictionary* other);
  void removeAllObjects();

  /// An NSDictionary with the entries of now.
  [[nodiscard]] Strong<NSObject> copy() const override;
  [[nodiscard]] const std::uint64_t& mutations() const override { return mutations_; }

  using Members = List<Method<"removeAllObjects", &NSMutableDictionary::removeAllObjects>>;

 private:
  std::uint64_t mutations_ = 0;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSDictionary>();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSMutableDictionary>();

/// A dictionary of these entries. Throws: as the constructor.
[[nodiscard]] inline Strong<NSDictionary> makeDictionary(std::initializer_list<NSDictionary::KeyAndValue> entries) {
  return make<NSDictionary>(entries);
}

}  // namespace platform
}  // namespace havrin
