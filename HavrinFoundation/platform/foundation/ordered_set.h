// SPDX-License-Identifier: Apache-2.0
// NSOrderedSet and NSMutableOrderedSet: objects, each once, in order.
//
//   const auto songs = makeOrderedSet({makeString("b"), makeString("a"), makeString("b")});
//   songs->array()                                      b, a: of equal objects the first stays
//   songs->indexOfObject(makeString("a"))               1
//   send<"orderedSetWithArray:">(classOf<NSMutableOrderedSet>(), songs->array())
//
// A subclass that overrides `count`, `objectAtIndex` and `indexOfObject` (mutable: `insertObject` and
// `removeObjectAtIndex` too) works everywhere an ordered set does; filtering gives it an instance of itself, made by
// `orderedSetWithArray:`. An ordered set equals no set and no array.
// Left out: exchanging, moving and sorting; set algebra.
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

class NSOrderedSet;

/// A new instance of the class it is sent to, with the elements of `array`, the first of equal ones; empty for null.
template <>
struct ClassMessage<NSOrderedSet, "orderedSetWithArray:"> : Signature<Strong<Self>(NSArray* array)> {};

class HAVRIN_EXPORT NSOrderedSet : public Object<NSOrderedSet, NSObject>, public NSFastEnumeration {
 public:
  /// The empty ordered set.
  NSOrderedSet();
  /// Throws: NSException (InvalidArgument) for a null object.
  explicit NSOrderedSet(std::span<NSObject* const> objects);
  explicit NSOrderedSet(std::initializer_list<NSObject*> objects)
      : NSOrderedSet(std::span(objects.begin(), objects.size())) {}
  ~NSOrderedSet() override;

  /// The method of the message `orderedSetWithArray:`.
  [[nodiscard]] static Strong<NSOrderedSet> orderedSetWithArray(ClassOf<NSOrderedSet> self, NSArray* array);
  /// Gives an allocated ordered set the elements of `array`, the first of equal ones. Result: the set to use in its
  /// place, here itself.
  virtual Strong<NSOrderedSet> initWithArray(const NSArray* array);

  [[nodiscard]] virtual std::uint64_t count() const;
  /// Throws: NSException (Range) at or beyond the end.
  [[nodiscard]] virtual Strong<NSObject> objectAtIndex(std::uint64_t index) const;
  /// The index of the element that is equal to `object`; `kNotFound` for none, and for null.
  /// Cost: a hash look-up for what is not there, then a walk by identity for what is.
  [[nodiscard]] virtual std::uint64_t indexOfObject(const NSObject* object) const;
  [[nodiscard]] bool containsObject(const NSObject* object) const { return indexOfObject(object) != kNotFound; }
  /// The elements in order, as an immutable array that shows the ordered set as it is whenever it is read.
  [[nodiscard]] virtual Strong<NSArray> array() const;

  /// True for an ordered set, mutable or not, with equal elements in the same order.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  /// "{(b, a)}".
  [[nodiscard]] Strong<NSString> description() const override;
  [[nodiscard]] Strong<NSObject> copy() const override;
  [[nodiscard]] Strong<NSObject> mutableCopy() const override;

  std::uint64_t countByEnumeratingWithState(NSFastEnumerationState& state,
                                            std::span<Strong<NSObject>> slots) const override;

  using Protocols = List<NSSecureCoding>;
  using ClassMembers = List<ClassMethod<"orderedSetWithArray:", &NSOrderedSet::orderedSetWithArray>>;

 protected:
  struct Entry {
    Strong<NSObject> key;
  };
  void insert(NSObject* object, std::uint64_t index);
  void remove(std::uint64_t index);

 private:
  ObjectTable<Entry> members_;
  Strong<NSMutableArray> order_;
};

/// Threads: one at a time.
class HAVRIN_EXPORT NSMutableOrderedSet : public Object<NSMutableOrderedSet, NSOrderedSet> {
 public:
  NSMutableOrderedSet() = default;
  explicit NSMutableOrderedSet(std::span<NSObject* const> objects) : Object(objects) {}

  /// Inserts the object before the one at `index`, or at the end for the count, unless an equal one is there already.
  /// Throws: NSException (InvalidArgument) for null, NSException (Range) beyond the count.
  virtual void insertObject(NSObject* object, std::uint64_t index);
  /// Throws: NSException (Range) at or beyond the end.
  virtual void removeObjectAtIndex(std::uint64_t index);
  void addObject(NSObject* object) { insertObject(object, count()); }
  /// Takes the equal element away, if there is one.
  void removeObject(const NSObject* object);

  /// An NSOrderedSet with the elements of now.
  [[nodiscard]] Strong<NSObject> copy() const override;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSOrderedSet>();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSMutableOrderedSet>();

[[nodiscard]] inline Strong<NSOrderedSet> makeOrderedSet(std::initializer_list<NSObject*> objects) {
  return make<NSOrderedSet>(objects);
}

}  // namespace platform
}  // namespace havrin
