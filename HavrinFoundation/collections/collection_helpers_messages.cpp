// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/collections/collection_helpers_messages.h>

#include <HavrinFoundation/platform/base/random.h>
#include <HavrinFoundation/platform/object/argument_errors.h>

namespace havrin {

namespace {

Strong<NSArray> immutableCopy(const NSArray& array) { return checkedCast<NSArray>(array.copy()); }

Strong<NSObject> randomObject(NSArray& self) {
  const std::uint64_t count = self.count();
  if (count == 0) return nullptr;
  return self.objectAtIndex(arc4random_uniform(static_cast<std::uint32_t>(count)));
}

Strong<NSArray> arrayByRemovingObjectsFromIndex(NSArray& self, std::int64_t index) {
  const Strong<NSObject> copy = self.mutableCopy();
  auto& rest = checkedReference<NSMutableArray>(copy);
  (void)send<"removeObjectsFromIndex:">(rest, index);  // a mutable copy of the program's may answer in its own way
  return immutableCopy(rest);
}

Strong<NSArray> arrayByCombiningElementsOfArrays(ClassOf<NSArray>, NilTerminated<NSArray> arrays) {
  Strong<NSArray> combined = makeArray({});
  for (const NSArray* array : arrays) combined = combined->arrayByAddingObjectsFromArray(array);
  return combined;
}

template <class Collection>
void safeAddObject(Collection& self, NSObject* object) {
  if (object) self.addObject(object);
}

// Each position takes one of the objects that are left, so every order is equally likely (Fisher and Yates).
void shuffle(NSMutableArray& self) {
  const std::uint64_t count = self.count();
  for (std::uint64_t i = 0; i + 1 < count; ++i) {
    self.exchangeObjectAtIndex(i, i + arc4random_uniform(static_cast<std::uint32_t>(count - i)));
  }
}

std::uint64_t uniqueInsertObject(NSMutableArray& self, NSObject* object, std::uint64_t preferred) {
  if (!object) throwNullArgument(self, "uniqueInsertObject:atPreferredIdx:", "object");
  if (const std::uint64_t found = self.indexOfObject(object); found != kNotFound) return found;
  const std::uint64_t count = self.count();
  const std::uint64_t index = preferred < count ? preferred : count;
  self.insertObject(object, index);
  return index;
}

// All are found before the first is removed, since the array may be the receiver itself.
Strong<NSIndexSet> removeObjectsInArray(NSMutableArray& self, NSArray* array) {
  Strong<NSIndexSet> indexes = self.indexesOfObjectsPassingTest(
      [&](NSObject* object, std::uint64_t, bool&) { return array && array->containsObject(object); });
  self.removeObjectsAtIndexes(indexes);
  return indexes;
}

Strong<NSArray> removeObjectsFromIndex(NSMutableArray& self, std::int64_t index) {
  const auto count = static_cast<std::int64_t>(self.count());
  if (count <= index) return makeArray({});
  if (index <= 0) {
    Strong<NSArray> all = immutableCopy(self);
    self.removeAllObjects();
    return all;
  }
  const NSRange range{static_cast<std::uint64_t>(index), static_cast<std::uint64_t>(count - index)};
  Strong<NSArray> removed = self.subarrayWithRange(range);
  self.removeObjectsInRange(range);
  return removed;
}

constexpr MethodRow kArrayRows[] = {
    row<NSArray, "hav_randomObject", randomObject>(),
    row<NSArray, "arrayByRemovingObjectsFromIndex:", arrayByRemovingObjectsFromIndex>()};
constexpr MethodRow kArrayClassRows[] = {
    classRow<NSArray, "arrayByCombiningElementsOfArrays:", arrayByCombiningElementsOfArrays>()};
constexpr MethodRow kMutableSetRows[] = {row<NSMutableSet, "safeAddObject:", safeAddObject<NSMutableSet>>()};
constexpr MethodRow kMutableArrayRows[] = {
    row<NSMutableArray, "safeAddObject:", safeAddObject<NSMutableArray>>(), row<NSMutableArray, "shuffle", shuffle>(),
    row<NSMutableArray, "uniqueInsertObject:atPreferredIdx:", uniqueInsertObject>(),
    row<NSMutableArray, "hav_removeObjectsInArray:", removeObjectsInArray>(),
    row<NSMutableArray, "removeObjectsFromIndex:", removeObjectsFromIndex>()};

}  // namespace

extern constinit const Category kArrayHelpers{classObject<NSArray>, "HavrinFoundation", kArrayRows, kArrayClassRows};
extern constinit const Category kMutableSetHelpers{classObject<NSMutableSet>, "Helpers", kMutableSetRows, {}};
extern constinit const Category kMutableArrayHelpers{classObject<NSMutableArray>, "Helpers", kMutableArrayRows, {}};

}  // namespace havrin
