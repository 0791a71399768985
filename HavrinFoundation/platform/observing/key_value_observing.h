// SPDX-License-Identifier: Apache-2.0
// Key-value observing: notifications of changes of the value under a key, or at the end of a path of keys.
//
//   class Watcher : public Object<Watcher, NSObject> {
//    public:
//     void observe(NSString* path, NSObject* object, NSDictionary* change, void* context) {
//       change->objectForKey(NSKeyValueChangeNewKey);              the new value; NSNull for null
//     }
//     using Members = List<Method<"observeValueForKeyPath:ofObject:change:context:", &Watcher::observe>>;
//   };
//   const auto watcher = make<Watcher>();
//   send<"addObserver:forKeyPath:options:context:">(station, watcher, keyPath<Station, "host.name">,
//                                                   NSKeyValueObservingOptionNew, &kMine);
//   send<"setTitle:">(station, title);                             notifies before this returns, on this thread
//   send<"removeObserver:forKeyPath:context:">(station, watcher, keyPath<Station, "host.name">, &kMine);
//
// What notifies: every setter, that is every message `set<Key>:` with one argument, hand-written ones too, also when it
// is sent by "setValue:forKey:"; changes through "mutableArrayValueForKey:"; and pairs of "willChangeValueForKey:" and
// "didChangeValueForKey:", of which the inner one is reported first. A field written directly is not seen. Setting an
// equal value notifies. An observed object is of a class of its own behind the scenes, which `class`, `description` and
// `isKindOfClass` do not show; objects without observers cost nothing more.
//
// Registering: observer and object are not retained, the context is only compared. The same registration made twice is
// notified twice and removed twice. A registration whose observer is gone is dropped by itself; one made on an object
// that is gone has gone with it.
// Throws: NSInvalidArgumentException for a null observer or path, and for an array, set, ordered set or class as the
// object; what "valueForKey:" throws when a key before the last is undefined, or with New and Initial the last. Nothing
// is registered then.
// Removing throws NSRangeException when no registration has that observer, path and context (or, without one, that
// observer and path).
//
// Paths: replacing an object on the way notifies the observers of the whole path, with the values at its end, and moves
// them to the new object. Objects on the way are not retained.
// Dependent keys: a class method keyPathsForValuesAffecting<Key>, or "keyPathsForValuesAffectingValueForKey:", names
// the paths whose change also changes the key. A class method automaticallyNotifiesObserversOf<Key>, or
// "automaticallyNotifiesObserversForKey:", that answers false leaves a key's setter to notify by hand. Both are asked
// once for each class and key.
//
// Threads: any; adding, removing and changing may meet, also inside a notification. A registration that is added during
// a notification does not get it; one removed during it does not get it any more. No lock is held while getters,
// setters and observers run. An observer that is being destroyed is not called. On one object, what is added and
// removed while a thread is inside a notification of it keeps its memory until that notification has returned.
// Cost: a change of a key with one observer is two counts more than the calls it makes; old and new values add two
// calls of the getter and one allocation.
// Left out: observation info, notifications of set changes, registering for the elements of an array, direct calls of
// insertObject:in<Key>AtIndex: (go through "mutableArrayValueForKey:"). Observing from a destructor does nothing.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/index_set.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/platform/object/lazy_string.h>
#include <HavrinFoundation/platform/object/message.h>
#include <HavrinFoundation/platform/observing/key_path.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// What a registration asks for: bits, added up.
inline constexpr std::uint64_t NSKeyValueObservingOptionNew = 1;      // the new value
inline constexpr std::uint64_t NSKeyValueObservingOptionOld = 2;      // the old value
inline constexpr std::uint64_t NSKeyValueObservingOptionInitial = 4;  // one notification at once
inline constexpr std::uint64_t NSKeyValueObservingOptionPrior = 8;    // a notification before the change, too

/// What a change is, under NSKeyValueChangeKindKey.
enum class NSKeyValueChange : std::uint64_t { setting = 1, insertion = 2, removal = 3, replacement = 4 };
inline constexpr auto NSKeyValueChangeSetting = NSKeyValueChange::setting;
inline constexpr auto NSKeyValueChangeInsertion = NSKeyValueChange::insertion;
inline constexpr auto NSKeyValueChangeRemoval = NSKeyValueChange::removal;
inline constexpr auto NSKeyValueChangeReplacement = NSKeyValueChange::replacement;

/// The keys of a change dictionary: "kind", "new", "old", "indexes", "notificationIsPrior".
HAVRIN_EXPORT extern constinit const LazyString NSKeyValueChangeKindKey;
HAVRIN_EXPORT extern constinit const LazyString NSKeyValueChangeNewKey;
HAVRIN_EXPORT extern constinit const LazyString NSKeyValueChangeOldKey;
HAVRIN_EXPORT extern constinit const LazyString NSKeyValueChangeIndexesKey;
HAVRIN_EXPORT extern constinit const LazyString NSKeyValueChangeNotificationIsPriorKey;

/// Registers the observer for the changes of a key path.
template <>
struct Message<NSObject, "addObserver:forKeyPath:options:context:">
    : Signature<void(NSObject*, NSString*, std::uint64_t, void*)> {};
/// Ends the registration that was made last with this observer, key path and context.
template <>
struct Message<NSObject, "removeObserver:forKeyPath:context:"> : Signature<void(NSObject*, NSString*, void*)> {};
template <>
struct Message<NSObject, "removeObserver:forKeyPath:"> : Signature<void(NSObject*, NSString*)> {};
/// Sent to an observer for every change: the key path, the object, the change, and the context of the registration.
/// Override it. Here: throws NSInternalInconsistencyException.
template <>
struct Message<NSObject, "observeValueForKeyPath:ofObject:change:context:">
    : Signature<void(NSString*, NSObject*, NSDictionary*, void*)> {};

/// A change made by hand: the first before it, the second after it.
template <>
struct Message<NSObject, "willChangeValueForKey:"> : Signature<void(NSString*)> {};
template <>
struct Message<NSObject, "didChangeValueForKey:"> : Signature<void(NSString*)> {};
/// The same for objects of an array that are inserted, removed or replaced.
template <>
struct Message<NSObject, "willChange:valuesAtIndexes:forKey:">
    : Signature<void(NSKeyValueChange, NSIndexSet*, NSString*)> {};
template <>
struct Message<NSObject, "didChange:valuesAtIndexes:forKey:">
    : Signature<void(NSKeyValueChange, NSIndexSet*, NSString*)> {};

/// Whether the setter of a key notifies. Override it with a ClassMethod.
template <>
struct ClassMessage<NSObject, "automaticallyNotifiesObserversForKey:"> : Signature<bool(NSString*)> {};
/// The key paths whose change also changes the value under a key; null for none. Override it with a ClassMethod.
template <>
struct ClassMessage<NSObject, "keyPathsForValuesAffectingValueForKey:"> : Signature<Strong<NSSet>(NSString*)> {};

}  // namespace platform
}  // namespace havrin
