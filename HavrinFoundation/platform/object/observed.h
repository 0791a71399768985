// SPDX-License-Identifier: Apache-2.0
// What the runtime asks of key-value observing, which implements it.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/object.h>

namespace havrin {
inline namespace platform {

/// Runs `apply`, which calls the setter of the shown class, between the two halves of a change notification.
HAVRIN_EXPORT void notifyChange(NSObject* object, const SelectorConstant& setter, void (*apply)(void*), void* context);

/// Ends every observation of an object whose last strong reference has gone, before its destructors run.
void dropObservations(NSObject* object) noexcept;

}  // namespace platform
}  // namespace havrin
