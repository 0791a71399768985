// SPDX-License-Identifier: Apache-2.0
// Block operations on sets and ordered sets, as messages. Filtering keeps the receiver's own class, transforming gives an
// array.
//
//   send<"select:">(genres, isPopular)                   a set of the receiver's class: mutable, or a subclass
//   send<"map:">(genres, titleOf)                        Strong<NSArray>: one entry each, NSNull where null came
//   send<"compactMap:">(songs, titleOf)                  the non-null results; duplicates among them stay
//
// None changes the receiver. Blocks are given the element alone. Ordered sets keep their order; a set's `map:` and
// `compactMap:` come in the order of `allObjects`, which means nothing.
// Throws: NSException (InvalidArgument) for a null block, before anything runs; what a block throws.
#pragma once

#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/foundation/set.h>

namespace havrin {

/// A set of the receiver's class with the elements for which the predicate answers true, made by that class's
/// `setWithSet:`.
template <>
struct platform::Message<NSSet, "select:"> : Signature<Strong<Self>(ElementPredicate)> {};
/// The same with the elements for which it answers false. Does not send `select:`.
template <>
struct platform::Message<NSSet, "reject:"> : Signature<Strong<Self>(ElementPredicate)> {};
/// Sends `map:` to an array of the elements.
template <>
struct platform::Message<NSSet, "map:"> : Signature<Strong<NSArray>(ElementTransform)> {};
/// Sends `compactMap:` to an array of the elements.
template <>
struct platform::Message<NSSet, "compactMap:"> : Signature<Strong<NSArray>(ElementTransform)> {};

/// An ordered set of the receiver's class: sends `select:` to an array of the elements, and makes the result of it by
/// that class's `orderedSetWithArray:`.
template <>
struct platform::Message<NSOrderedSet, "select:"> : Signature<Strong<Self>(ElementPredicate)> {};
/// The same with `reject:`.
template <>
struct platform::Message<NSOrderedSet, "reject:"> : Signature<Strong<Self>(ElementPredicate)> {};
/// Sends `map:` to an array of the elements.
template <>
struct platform::Message<NSOrderedSet, "map:"> : Signature<Strong<NSArray>(ElementTransform)> {};
/// Sends `compactMap:` to an array of the elements.
template <>
struct platform::Message<NSOrderedSet, "compactMap:"> : Signature<Strong<NSArray>(ElementTransform)> {};

}  // namespace havrin
