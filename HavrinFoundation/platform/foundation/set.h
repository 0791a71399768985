// SPDX-License-Identifier: Apache-2.0
// NSSet and NSMutableSet: objects, each once, found by equality.
//
//   const auto genres = makeSet({makeString("jazz"), makeString("news"), makeString("jazz")});
//   genres->count()                                     2
//   genres->containsObject(makeString("news"))          true
//   send<"setWithSet:">(classOf<NSMutableSet>(), genres)     a mutable set with the same elements
//   for (NSObject* genre : each(genres)) ...            fast_enumeration.h
//
// Of two equal objects the first is kept. The order of the elements is unspecified.
// A subclass that overrides `count`, `member` and `allObjects` (mutable: `addObject` and `removeObject` too) works
// everywhere a set does; filtering gives it an instance of itself, made by `setWithSet:`.
// Left out: counted sets, set algebra, sorted sets.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/fast_enumeration.h>
#include <HavrinFoundation/platform/foundation/object_table.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>

#include <cstdint>
#include <initializer_list>
#include <span>

namespace havrin {
inline namespace platform {

class NSSet;

/// A new instance of the class it is sent to, with the elements of `set`; empty for null.
template <>
struct ClassMessage<NSSet, "setWithSet:"> : Signature<Strong<Self>(NSSet* set)> {};

class HAVRIN_EXPORT NSSet : public Object<NSSet, NSObject>, public NSFastEnumeration {
 public:
  using Test = BlockView<bool(NSObject* object, bool& stop)>;

  /// The empty set.
  NSSet() noexcept = default;
  /// Throws: NSException (InvalidArgument) for a null object.
  explicit NSSet(std::span<NSObject* const> objects);
  explicit NSSet(std::initializer_list<NSObject*> objects) : NSSet(std::span(objects.begin(), objects.size())) {}
  ~NSSet() override;

  /// The method of the message `setWithSet:`.
  [[nodiscard]] static Strong<NSSet> setWithSet(ClassOf<NSSet> self, NSSet* set);
  /// Gives an allocated set the elements of `set`. Result: the set to use in its place, here itself.
  virtual Strong<NSSet> initWithSet(const NSSet* set);

  [[nodiscard]] virtual std::uint64_t count() const;
  /// The element that is equal to `object`; null for none, and for null.
  [[nodiscard]] virtual Strong<NSObject> member(const NSObject* object) const;
  /// The elements, each once, in no particular order.
  [[nodiscard]] virtual Strong<NSArray> allObjects() const;
  [[nodiscard]] bool containsObject(const NSObject* object) const { return static_cast<bool>(member(object)); }
  /// A new, immutable set of the elements that pass the test, which may set `stop`.
  [[nodiscard]] virtual Strong<NSSet> objectsPassingTest(Test test) const;

  /// True for a set with equal elements, mutable or not.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  /// Derived from the elements, except those that are collections. Cost: linear.
  [[nodiscard]] std::uint64_t hash() const override;
  /// "{jazz, news}". Collections nested deeper than 64 levels are shown as "...", in brackets.
  [[nodiscard]] Strong<NSString> description() const override;
  [[nodiscard]] Strong<NSObject> copy() const override;
  [[nodiscard]] Strong<NSObject> mutableCopy() const override;

  std::uint64_t countByEnumeratingWithState(NSFastEnumerationState& state,
                                            std::span<Strong<NSObject>> slots) const override;
  /// A number that changes when an element is added or removed.
  [[nodiscard]] virtual const std::uint64_t& mutations() const;

  using Protocols = List<NSSecureCoding>;
  using ClassMembers = List<ClassMethod<"setWithSet:", &NSSet::setWithSet>>;

 protected:
  struct Entry {
    Strong<NSObject> key;
  };
  /// True when the elements below are the set: the class is the layer's own.
  [[nodiscard]] bool isPlain() const;

  ObjectTable<Entry> elements_;
};

/// Threads: one at a time.
class HAVRIN_EXPORT NSMutableSet : public Object<NSMutableSet, NSSet> {
 public:
  NSMutableSet() noexcept = default;
  explicit NSMutableSet(std::span<NSObject* const> objects) : Object(objects) {}

  /// Adds the object unless an equal one is there, which then stays.
  /// Throws: NSException (InvalidArgument) for null.
  virtual void addObject(NSObject* object);
  /// Removes the equal element, if there is one. Does nothing for null.
  virtual void removeObject(const NSObject* object);
  void removeAllObjects();

  /// An NSSet with the elements of now.
  [[nodiscard]] Strong<NSObject> copy() const override;
  [[nodiscard]] const std::uint64_t& mutations() const override { return mutations_; }

  using Members = List<Method<"removeAllObjects", &NSMutableSet::removeAllObjects>>;

 private:
  std::uint64_t mutations_ = 0;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSSet>();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSMutableSet>();

[[nodiscard]] inline Strong<NSSet> makeSet(std::initializer_list<NSObject*> objects) { return make<NSSet>(objects); }

}  // namespace platform
}  // namespace havrin
