// SPDX-License-Identifier: Apache-2.0
// Key-value coding: properties read and set by a name that is known only at run time.
//
//   send<"valueForKey:">(station, makeString("listeners"))               NSNumber: numbers and booleans are boxed
//   send<"setValue:forKey:">(station, makeNumber(12), makeString("listeners"));   by the setter: observers hear of it
//   send<"valueForKeyPath:">(station, makeString("host.name"))           null without a host
//   send<"valueForKey:">(station, makeString("lisTeners"))               throws NSException (NSUndefinedKeyException)
//   send<"setValue:forKey:">(station, nullptr, makeString("listeners"))  throws NSException (InvalidArgument): a number
//   send<"mutableArrayValueForKey:">(station, makeString("songs"))->addObject(song);   observers receive an insertion
//   send<"valueForKey:">(station, makeString("songs"))->description()    "(Waltz)"
//
// Every object answers these messages; a class overrides one by a method of its selector in its list. A key is answered
// by the methods that the class has rows for, its own, inherited or from a category:
// - reading: get<Key>, <key>, is<Key>, _<key>: the first that takes nothing and returns something
// - setting: set<Key>:, _set<Key>:: the first that takes one object, number or boolean
// Where none does, "valueForUndefinedKey:" or "setValue:forUndefinedKey:" is sent, which throw NSUndefinedKeyException;
// null for a number or boolean sends "setNilValueForKey:", which throws NSInvalidArgumentException. A null key throws
// NSInvalidArgumentException. Dictionaries answer keys with their entries; mutable ones set them, with a notification,
// and remove them for null.
//
// Cost: a hash look-up of the class and the key, then the method's call, boxed. Threads: any; the methods' own
// otherwise.
// Left out: fields found by name (`_key` without a method), collection operators ("@count"), reading a key from every
// element of a collection, validation, dictionaries of several keys.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/object/message.h>
#include <HavrinFoundation/platform/observing/key_path.h>

namespace havrin {
inline namespace platform {

class NSMutableArray;

/// The value of a property, numbers boxed.
template <>
struct Message<NSObject, "valueForKey:"> : Signature<Strong<NSObject>(NSString*)> {};
/// The value at the end of a path of keys; null as soon as one on the way is null.
template <>
struct Message<NSObject, "valueForKeyPath:"> : Signature<Strong<NSObject>(NSString*)> {};
template <>
struct Message<NSObject, "setValue:forKey:"> : Signature<void(NSObject*, NSString*)> {};
/// Sets the last key on the object that the keys before it lead to; does nothing when that is null.
template <>
struct Message<NSObject, "setValue:forKeyPath:"> : Signature<void(NSObject*, NSString*)> {};
/// The array under a key as one that can be changed in place, with a notification for each change. It reads the property
/// at every use.
template <>
struct Message<NSObject, "mutableArrayValueForKey:"> : Signature<Strong<NSMutableArray>(NSString*)> {};

/// Sent for a key that the class has no method for. Here: throws NSUndefinedKeyException.
template <>
struct Message<NSObject, "valueForUndefinedKey:"> : Signature<Strong<NSObject>(NSString*)> {};
template <>
struct Message<NSObject, "setValue:forUndefinedKey:"> : Signature<void(NSObject*, NSString*)> {};
/// Sent for null as the value of a number or boolean. Here: throws NSInvalidArgumentException.
template <>
struct Message<NSObject, "setNilValueForKey:"> : Signature<void(NSString*)> {};

}  // namespace platform
}  // namespace havrin
