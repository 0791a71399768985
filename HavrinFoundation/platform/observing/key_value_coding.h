// SPDX-License-Identifier: Apache-2.0
// Key-value coding: properties read and set by a name that is known only at run time.
//
//   station->valueForKey(makeString("listeners"))                  NSNumber: numbers and booleans are boxed
//   station->setValueForKey(makeNumber(12), makeString("listeners"))    through the setter: observers hear of it once
//   station->valueForKeyPath(makeString("host.name"))              null when there is no host
//   station->valueForKey(makeString("lisTeners"))                  throws NSException (NSUndefinedKeyException)
//   station->setValueForKey(nullptr, makeString("listeners"))      throws NSException (InvalidArgument): a number
//   station->mutableArrayValueForKey(makeString("songs"))->addObject(song)      observers receive an insertion
//
// The operations are members of NSObject; a class may override any of them. A key is answered by the methods that the
// class has rows for, its own, inherited or from a category:
//   reading     get<Key>, <key>, is<Key>, _<key>: the first that takes nothing and returns something
//   setting     set<Key>:, _set<Key>:: the first that takes one object, number or boolean
// Where none does, `valueForUndefinedKey` or `setValueForUndefinedKey` is called, which throw NSUndefinedKeyException;
// null for a number or boolean calls `setNilValueForKey`, which throws NSInvalidArgumentException. A null key throws
// NSInvalidArgumentException. Dictionaries answer keys with their entries.
//
// Cost: a hash look-up of the class and the key, then the method's call, boxed. Threads: any; the methods' own
// otherwise.
// Left out: fields found by name (`_key` without a method), collection operators ("@count"), reading a key from every
// element of a collection, validation, dictionaries of several keys.
#pragma once

#include <HavrinFoundation/platform/observing/key_path.h>
