// SPDX-License-Identifier: Apache-2.0
// Values attached to objects that have no field for them, released after the object's destructors have run.
//
//   setAssociatedValue(*responder, selector<"keyValueObservations">, tokens);
//   associatedValue(*responder, selector<"keyValueObservations">)          the very same array; null when never set
//
// Left out: the copying and the non-owning policies; every value is retained.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/object.h>

namespace havrin {
inline namespace platform {

/// The value stored under `key`, or null. Cost: a hash look-up under a lock shared by some other objects. Threads: any.
[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> associatedValue(const NSObject& object, Selector key);

/// Stores `value` under `key`, retained; null removes. The old value is released after the new one is stored.
/// Cost: a hash insertion under a lock. Threads: any.
HAVRIN_EXPORT void setAssociatedValue(NSObject& object, Selector key, NSObject* value);

}  // namespace platform
}  // namespace havrin
