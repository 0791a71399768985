// SPDX-License-Identifier: Apache-2.0
// Block operations on arrays, as messages of NSArray(Blocks): filter, transform, fold, search, and an asynchronous map
// that takes one element at a time.
//
//   send<"select:">(stations, [](Station& s) { return s.isOnAir(); })       the stations on air, in order
//   send<"map:">(stations, [](Station& s) { return s.title(); })            one entry each; NSNull where a title is null
//   send<"compactMap:">(stations, [](Station& s) { return s.song(); })      null results left out
//   send<"reduce:withBlock:">(numbers, makeNumber(0), sum)                  the last accumulator
//   send<"firstWhere:">(stations, isFavourite)                              the first that passes, or null
//   send<"asyncMap:result:">(stations,
//                            [](Station& s, const AsyncCompletion& done) { s.loadCover(done); },
//                            [](NSArray* covers) { show(covers); });        one cover at a time, in the stations' order
//
// None changes the receiver, and every array that comes back is a new, immutable NSArray. Blocks are given the element
// alone: no index and no stop flag. Receiver, arguments and blocks are held for the call, so a block may drop the last
// reference to any of them.
// Throws, in all of them: NSException (InvalidArgument) for a null block, before anything runs; NSException (Generic)
// after a block has changed the receiver; what a block throws.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/array.h>

#include <cstdint>

namespace havrin {

using ElementPredicate = BlockView<bool(NSObject* element)>;
/// The new entry, or null.
using ElementTransform = BlockView<Strong<NSObject>(NSObject* element)>;
/// The new accumulator, or null; the next element is given what the last call returned.
using ElementReducer = BlockView<Strong<NSObject>(NSObject* accumulator, NSObject* element)>;
/// Called with the mapped value of one element. Throws: NSException (InvalidArgument) for null, which no array holds.
using AsyncCompletion = Block<void(NSObject* value)>;
/// Starts the work for one element, and calls the completion when its value is there: now or later, on any thread.
using AsyncTransform = Block<void(NSObject* element, const AsyncCompletion& completion)>;
using AsyncResult = Block<void(NSArray* values)>;

/// The elements for which the predicate answers true, once each and in ascending order; duplicates stay.
template <>
struct platform::Message<NSArray, "select:"> : Signature<Strong<NSArray>(ElementPredicate)> {};

/// The elements for which it answers false. Sends `select:` to the receiver, so that an override takes part.
template <>
struct platform::Message<NSArray, "reject:"> : Signature<Strong<NSArray>(ElementPredicate)> {};

/// One entry per element: what the transform returns, or NSNull where it returns null. Cost: one allocation.
template <>
struct platform::Message<NSArray, "map:"> : Signature<Strong<NSArray>(ElementTransform)> {};

/// Transforms the elements strictly one after the other and gives `result` the array of their values, in element order.
/// Sends `asyncMapAux:block:currentResult:result:` from index 0, here and for each further element.
///
/// The next element's transform runs inside the completion of the one before, on that thread; `result` runs inside the
/// last one. For an empty receiver it runs before the message returns. A completion that is called while its own
/// transform still runs on the same thread is noted, and acted upon when the transform returns. A chain that begins
/// inside a `result` transforms its first element at once and goes on when that `result` has returned, if the element
/// completes at once. So chains that complete at once use constant stack, also where each begins the next, and neither
/// a transform nor a `result` may wait for what it began. A chain that begins inside a transform and completes at once
/// ends before its message returns.
/// Stack still grows with each level in two cases: where a `result` begins a chain over an empty array, whose own
/// `result` runs at once, and where an override of the step, inside a transform, sends the next step itself.
/// Every step has its own array of values so far. A completion called again starts a second continuation from there,
/// which transforms the later elements anew and ends in a call of `result` of its own; one that is never called ends the
/// chain silently.
/// The receiver is read anew at each step, and may change between them.
/// Throws: what a block throws, to the caller that entered the chain on that thread, after all noted completions have
/// been acted upon; the first exception where there are several.
/// Cost: linear in the number of elements, the copying of the values included. Threads: any.
template <>
struct platform::Message<NSArray, "asyncMap:result:"> : Signature<void(const AsyncTransform&, const AsyncResult&)> {};

/// One step of the above: transforms the element at `index`, with the values of those before it in `partial`, and goes on
/// from there. Calls `result` with `partial` when there is no such element. For resuming a chain.
/// Throws: NSException (InvalidArgument) for a null `partial`, too.
template <>
struct platform::Message<NSArray, "asyncMapAux:block:currentResult:result:">
    : Signature<void(std::uint64_t index, const AsyncTransform&, NSArray* partial, const AsyncResult&)> {};

/// As `map:`, without the elements for which the transform returns null.
template <>
struct platform::Message<NSArray, "compactMap:"> : Signature<Strong<NSArray>(ElementTransform)> {};

/// The accumulator after the last element; of an empty receiver, the initial one. Both may be null.
template <>
struct platform::Message<NSArray, "reduce:withBlock:">
    : Signature<Strong<NSObject>(NSObject* initial, ElementReducer)> {};

/// The first element for which the predicate answers true, or null; the elements after it are not tested.
template <>
struct platform::Message<NSArray, "firstWhere:"> : Signature<Strong<NSObject>(ElementPredicate)> {};

}  // namespace havrin
