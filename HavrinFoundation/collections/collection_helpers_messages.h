// SPDX-License-Identifier: Apache-2.0
// Everyday helpers of arrays and mutable collections, as messages.
//
//   send<"hav_randomObject">(stations)                                       one of them, or null when there is none
//   send<"arrayByRemovingObjectsFromIndex:">(stations, 3)                    the first three
//   send<"arrayByCombiningElementsOfArrays:">(classOf<NSArray>(), nilTerminated(news, music, nullptr))
//   send<"safeAddObject:">(list, station)                                    null adds nothing
//   send<"shuffle">(list)
//   send<"uniqueInsertObject:atPreferredIdx:">(list, station, 0)             its index, old or new
//   send<"hav_removeObjectsInArray:">(list, hidden)                          the positions that were removed
//   send<"removeObjectsFromIndex:">(list, 3)                                 the objects that were removed
//
// Whether an object is in an array, `isEqual` decides. Random numbers come from `arc4random_uniform` (random.h), whose
// bound has 32 bits: arrays that are shuffled have fewer than 2^32 objects, those that a random one is picked from
// fewer than 2^31.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/nil_terminated.h>
#include <HavrinFoundation/platform/foundation/set.h>

#include <cstdint>

namespace havrin {

/// An element, each equally likely; null for an empty array.
template <>
struct platform::Message<NSArray, "hav_randomObject"> : Signature<Strong<NSObject>()> {};

/// A new array of the elements before `index`: none of them for 0 and below, all from the count on. Sends
/// `removeObjectsFromIndex:` to a mutable copy.
template <>
struct platform::Message<NSArray, "arrayByRemovingObjectsFromIndex:"> : Signature<Strong<NSArray>(std::int64_t index)> {
};

/// A new array of the elements of all arrays before the first null, in order; a plain NSArray, of whatever class it is
/// asked.
template <>
struct platform::ClassMessage<NSArray, "arrayByCombiningElementsOfArrays:">
    : Signature<Strong<NSArray>(NilTerminated<NSArray>)> {};

/// Adds the object, by `addObject`; null adds nothing.
template <>
struct platform::Message<NSMutableSet, "safeAddObject:"> : Signature<void(NSObject*)> {};

/// Adds the object at the end, by `addObject`; null adds nothing.
template <>
struct platform::Message<NSMutableArray, "safeAddObject:"> : Signature<void(NSObject*)> {};

/// Puts the elements in a random order, each equally likely, from the front: one draw and one exchange for every
/// element but the last, the exchange of an element with itself included.
template <>
struct platform::Message<NSMutableArray, "shuffle"> : Signature<void()> {};

/// Inserts the object at `index`, or at the end when the array is not as long, unless an equal one is there already.
/// Result: the index of the first equal object. Throws: NSException (InvalidArgument) for null.
template <>
struct platform::Message<NSMutableArray, "uniqueInsertObject:atPreferredIdx:">
    : Signature<std::uint64_t(NSObject*, std::uint64_t index)> {};

/// Removes every element that `array` contains, in one step. Result: their positions before that. Null contains
/// nothing.
/// Cost: asks `array` once for each element.
template <>
struct platform::Message<NSMutableArray, "hav_removeObjectsInArray:"> : Signature<Strong<NSIndexSet>(NSArray* array)> {
};

/// Removes the elements from `index` on: all of them for 0 and below, none from the count on. Result: those elements,
/// in order, as an immutable array.
template <>
struct platform::Message<NSMutableArray, "removeObjectsFromIndex:"> : Signature<Strong<NSArray>(std::int64_t index)> {};

}  // namespace havrin
