// SPDX-License-Identifier: Apache-2.0
// UIResponder(KeyValueObservation): the observations that a responder owns and that end with it. Messages only.
//
//   send<"observeModel:forKeyPath:action:">(board, station, keyPath<Station, "title">,
//       [](Board& board, Station& station, NSDictionary*) { board.redraw(station); });
//           runs at once, then on the main queue for every change, until the board is destroyed
//   send<"keyValueObservations">(board)                     the tokens, in the order of their registration
//   send<"setKeyValueObservations:">(board, nullptr)        ends them all
//
// The first three forms send the fourth to the responder, so that overriding it is to take part in them all. Capture the
// responder in an action by no strong reference: it owns the observation, which owns the action.
// Registering returns nothing; the responder's list alone keeps an observation. Threads: one at a time per responder.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/observation/key_value_observation_messages.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/interface/responder.h>
#include <HavrinFoundation/platform/object/message.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/platform/observing/key_path.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// Observes one key path with options 0. Nil: NSException (InvalidArgument) for a null key path; nothing is registered.
template <>
struct Message<UIResponder, "observeModel:forKeyPath:action:">
    : Signature<void(NSObject*, NSString*, const KeyValueObservation::Action&)> {};

/// Observes several key paths with options 0: one first call, and one for each change of either.
template <>
struct Message<UIResponder, "observeModel:forKeyPaths:action:">
    : Signature<void(NSObject*, NSArray*, const KeyValueObservation::Action&)> {};

/// Observes one key path. Nil: as the first.
template <>
struct Message<UIResponder, "observeModel:forKeyPath:options:action:">
    : Signature<void(NSObject*, NSString*, std::uint64_t, const KeyValueObservation::Action&)> {};

/// Makes an observation of the model with the receiver as its observer, and appends it to a new copy of the receiver's
/// list. During the first call of the action the list does not hold it yet. Throws: as KeyValueObservation's creation.
template <>
struct Message<UIResponder, "observeModel:forKeyPaths:options:action:">
    : Signature<void(NSObject*, NSArray*, std::uint64_t, const KeyValueObservation::Action&)> {};

/// The observations; null until the first. Stored as an associated value under this selector.
template <>
struct Message<UIResponder, "keyValueObservations"> : Signature<Strong<NSArray>()> {};

/// Puts this very array in the list's place. Observations that nothing else holds end, once their queued deliveries have
/// run. Nil: ends them all.
template <>
struct Message<UIResponder, "setKeyValueObservations:"> : Signature<void(NSArray*)> {};

}  // namespace platform
}  // namespace havrin
