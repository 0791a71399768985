// SPDX-License-Identifier: Apache-2.0
// NSArray and NSMutableArray: objects in order.
//
//   const auto names = makeArray({makeString("Nord"), makeString("Sud")});
//   names->count()                                     2
//   names->objectAtIndex(1)                            "Sud"
//   names->objectAtIndex(2)                            throws NSException, named NSRangeException
//   names->arrayByAddingObject(makeString("Ost"))      a new array of three; `names` stays as it is
//   for (NSObject* name : each(names)) ...             fast_enumeration.h
//
//   const auto list = makeMutableArray({});
//   list->addObject(makeString("Nord"));
//   list->copy()                                       an immutable array, in constant time
//
// A subclass that overrides `count` and `objectAtIndex` works everywhere an array does; a mutable one overrides
// `insertObject`, `removeObjectAtIndex` and `replaceObjectAtIndex` too, which all other changes of a subclass go
// through. Whether an object is in an array, its `isEqual` decides, asked of each element, identity first.
//
// Left out: sorting, sort descriptors and predicates, joining strings, reading and writing files, key-value coding of
// all elements at once, sparse and typed arrays.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/fast_enumeration.h>
#include <HavrinFoundation/platform/foundation/index_set.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <new>
#include <span>
#include <utility>

namespace havrin {
inline namespace platform {

class ArrayBuffer;
class NSMutableArray;
class NSString;

/// An immutable array.
/// Cost: reading is constant time; `arrayByAddingObject` is too, amortised over a chain (array_buffer.h). Threads: any.
class HAVRIN_EXPORT NSArray : public Object<NSArray, NSObject>, public NSFastEnumeration {
 public:
  using Test = BlockView<bool(NSObject* object, std::uint64_t index, bool& stop)>;

  /// The empty array.
  NSArray() noexcept = default;
  ~NSArray() override;

  [[nodiscard]] virtual std::uint64_t count() const { return length_; }
  /// Throws: NSException (Range) at or beyond the end.
  [[nodiscard]] virtual Strong<NSObject> objectAtIndex(std::uint64_t index) const;
  [[nodiscard]] virtual Strong<NSObject> objectAtIndexedSubscript(std::uint64_t index) const;
  /// Null for an empty array.
  [[nodiscard]] Strong<NSObject> firstObject() const;
  [[nodiscard]] Strong<NSObject> lastObject() const;

  [[nodiscard]] virtual bool containsObject(const NSObject* object) const;
  /// The first index of an equal object; `kNotFound` when there is none, and for null.
  [[nodiscard]] virtual std::uint64_t indexOfObject(const NSObject* object) const;
  /// The first index whose object passes the test, or `kNotFound`; nothing is tested after it.
  [[nodiscard]] virtual std::uint64_t indexOfObjectPassingTest(Test test) const;
  /// Every index whose object passes the test, which is called in ascending order and may set `stop`.
  [[nodiscard]] virtual Strong<NSIndexSet> indexesOfObjectsPassingTest(Test test) const;
  /// Calls the block in ascending order until it sets `stop`. Throws: NSException (Generic) after the block has changed
  /// the array.
  virtual void enumerateObjectsUsingBlock(
      BlockView<void(NSObject* object, std::uint64_t index, bool& stop)> block) const;

  /// New immutable arrays. Objects are held, not copied.
  /// Throws: NSException (InvalidArgument) for a null object or index set, NSException (Range) for indexes beyond the
  /// end. A null array adds nothing.
  [[nodiscard]] virtual Strong<NSArray> arrayByAddingObject(NSObject* object) const;
  [[nodiscard]] virtual Strong<NSArray> arrayByAddingObjectsFromArray(const NSArray* array) const;
  [[nodiscard]] virtual Strong<NSArray> subarrayWithRange(NSRange range) const;
  [[nodiscard]] virtual Strong<NSArray> objectsAtIndexes(const NSIndexSet* indexes) const;

  /// True for an array, mutable or not, with equal objects in the same order.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  /// From the count and the first sixteen objects, of which collections count for nothing.
  [[nodiscard]] std::uint64_t hash() const override;
  /// "(Nord, Sud)". Collections nested deeper than 64 levels are shown as "...", in brackets.
  [[nodiscard]] Strong<NSString> description() const override;
  /// The array itself; of a mutable array or a subclass, an immutable array with its present objects.
  [[nodiscard]] Strong<NSObject> copy() const override;
  [[nodiscard]] Strong<NSObject> mutableCopy() const override;

  std::uint64_t countByEnumeratingWithState(NSFastEnumerationState& state,
                                            std::span<Strong<NSObject>> slots) const override;

  /// True when the class is the layer's own, so that `elements` are the array and no override is passed over.
  [[nodiscard]] bool isPlain() const { return isExactly<NSArray>() || isExactly<NSMutableArray>(); }
  /// The elements in place, of a plain array; valid until it changes.
  [[nodiscard]] std::span<const Strong<NSObject>> elements() const { return {slots_, length_}; }
  /// An immutable, plain array with the present objects: `copy` with its type.
  [[nodiscard]] Strong<NSArray> snapshot() const {
    return isExactly<NSArray>() ? Strong<NSArray>(const_cast<NSArray*>(this)) : copied();
  }
  /// A number that every change of a mutable array changes.
  [[nodiscard]] virtual const std::uint64_t& mutations() const;

  /// Calls `body(NSObject*, index)` in ascending order until it answers false. The caller holds the array; its elements
  /// are held, also when `body` removes them. A plain array's are read in place.
  /// Throws: NSException (Generic) after `body` has changed the array.
  template <class Body>
  void visit(Body body) const;

  using Protocols = List<NSSecureCoding>;

 private:
  friend class ArrayBuilder;
  friend class NSMutableArray;
  using Slot = Strong<NSObject>;
  struct Behind {};
  // The elements are behind the object, in one allocation with it.
  NSArray(Behind, std::uint64_t length) noexcept : slots_(reinterpret_cast<Slot*>(this + 1)), length_(length) {}

  template <class ClassType>
  [[nodiscard]] bool isExactly() const {
    return dispatchClass(this) == classObject<ClassType>();
  }
  [[nodiscard]] Strong<NSArray> copied() const;
  void adopt(ArrayBuffer* buffer, std::uint64_t length) noexcept;
  template <class Fill>
  [[nodiscard]] Strong<NSArray> adding(std::uint64_t more, Fill fill) const;

  Slot* slots_ = nullptr;
  std::uint64_t length_ = 0;
  ArrayBuffer* buffer_ = nullptr;  // null: the elements are behind the object, or there are none
};

/// An array that changes. Its `copy` shares its storage until one of them has to differ.
/// Throws: NSException (InvalidArgument) for a null object or index set, NSException (Range) for an index beyond the
/// end, both before anything has changed. Threads: one at a time; copies may be used elsewhere meanwhile.
class HAVRIN_EXPORT NSMutableArray : public Object<NSMutableArray, NSArray> {
 public:
  NSMutableArray() noexcept = default;
  /// Empty, with room for `capacity` objects.
  explicit NSMutableArray(std::uint64_t capacity);

  // What a subclass with storage of its own overrides, beside `count` and `objectAtIndex`.
  /// `index` may be the count: the object then goes to the end.
  virtual void insertObject(NSObject* object, std::uint64_t index);
  virtual void removeObjectAtIndex(std::uint64_t index);
  virtual void replaceObjectAtIndex(std::uint64_t index, NSObject* object);

  virtual void addObject(NSObject* object);
  /// Does nothing for null.
  virtual void addObjectsFromArray(const NSArray* array);
  virtual void exchangeObjectAtIndex(std::uint64_t index, std::uint64_t otherIndex);
  /// Does nothing when the array is empty.
  virtual void removeLastObject();
  virtual void removeObjectsAtIndexes(const NSIndexSet* indexes);
  virtual void removeObjectsInRange(NSRange range);
  virtual void removeAllObjects();

  [[nodiscard]] const std::uint64_t& mutations() const override { return mutations_; }

  using Members = List<Method<"removeLastObject", &NSMutableArray::removeLastObject>,
                       Method<"removeAllObjects", &NSMutableArray::removeAllObjects>>;

 private:
  friend class NSArray;
  void makeWritable(std::uint64_t capacity);
  void resize(std::uint64_t length) noexcept;
  void shorten(std::uint64_t length) noexcept;
  template <class Fill>
  void append(std::uint64_t more, Fill fill);

  std::uint64_t mutations_ = 0;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSArray>();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSMutableArray>();

/// Collects objects and makes an immutable array of them in one allocation.
///   ArrayBuilder titles(stations->count());
///   for (NSObject* station : each(stations)) titles.add(titleOf(station));
///   return titles.finish();
/// Cost: objects are written to their final place; when more come than were expected, they are moved. Memory that was
/// expected and not used is given back where that is worth a call.
class HAVRIN_EXPORT ArrayBuilder {
 public:
  /// Makes room for `expected` objects.
  explicit ArrayBuilder(std::uint64_t expected);
  ArrayBuilder(const ArrayBuilder&) = delete;
  ArrayBuilder& operator=(const ArrayBuilder&) = delete;
  ~ArrayBuilder();

  /// Appends an object. Throws: NSException (InvalidArgument) for null.
  void add(Strong<NSObject> object) {
    if (!object) throwNull();
    if (count_ == capacity_) [[unlikely]]
      grow();
    new (room() + count_++) Strong<NSObject>(std::move(object));
  }
  /// Appends an object, which is not null, where `wanted`. Without a branch: no predictor learns the answers of a
  /// filter. The object's owner keeps it until `finish`. Every object of one builder is added in the same way.
  void addWhere(bool wanted, NSObject* object) {
    if (noted_ == capacity_) [[unlikely]]
      grow();
    new (room() + noted_) Strong<NSObject>(Strong<NSObject>::adopt(object));
    noted_ += wanted;
    if (noted_ == count_ + kNoted) holdNoted();
  }
  /// The array. The builder is empty afterwards.
  [[nodiscard]] Strong<NSArray> finish();

 private:
  // The slots of the array under construction. Not called `slots`, which some programs define as a macro.
  [[nodiscard]] Strong<NSObject>* room() const {
    return reinterpret_cast<Strong<NSObject>*>(static_cast<NSArray*>(memory_) + 1);
  }
  static constexpr std::uint64_t kNoted = 32;  // objects that are held in one go, while they are in the nearest cache
  void holdNoted() {
    for (; count_ < noted_; ++count_) retainObject(room()[count_]);
  }
  void grow();
  [[noreturn]] static void throwNull();

  void* memory_ = nullptr;
  std::uint64_t count_ = 0;
  std::uint64_t noted_ = 0;  // the slots up to here that addWhere has filled; those beyond the count are not held yet
  std::uint64_t capacity_ = 0;
};

/// An array of these objects. Throws: NSException (InvalidArgument) when one is null. Cost: one allocation.
[[nodiscard]] HAVRIN_EXPORT Strong<NSArray> makeArray(std::initializer_list<NSObject*> objects);
/// As above, from any row of pointers or `Strong`: a vector, a span.
template <class Row>
requires requires(const Row& row) {
  { *std::data(row) } -> std::convertible_to<NSObject*>;
  std::size(row);
}
[[nodiscard]] Strong<NSArray> makeArray(const Row& row) {
  ArrayBuilder builder(std::size(row));
  for (const auto& object : row) builder.add(static_cast<NSObject*>(object));
  return builder.finish();
}
[[nodiscard]] HAVRIN_EXPORT Strong<NSMutableArray> makeMutableArray(std::initializer_list<NSObject*> objects);

template <class Body>
void NSArray::visit(Body body) const {
  if (isExactly<NSArray>()) {
    for (std::uint64_t index = 0; index < length_; ++index) {
      if (!body(slots_[index].get(), index)) return;
    }
    return;
  }
  const Strong<NSArray> row = isPlain() ? snapshot() : nullptr;
  const std::uint64_t& counter = mutations();
  const std::uint64_t before = counter;
  const std::uint64_t end = row ? row->length_ : count();
  for (std::uint64_t index = 0; index < end; ++index) {
    const bool goesOn = row ? body(row->slots_[index].get(), index) : body(objectAtIndex(index).get(), index);
    if (counter != before) throwMutatedWhileEnumerated(this);
    if (!goesOn) return;
  }
}

}  // namespace platform
}  // namespace havrin
