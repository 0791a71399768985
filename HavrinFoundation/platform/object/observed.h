// SPDX-License-Identifier: Apache-2.0
// What the class of an observed object calls. Key-value observing, in a folder above, makes such classes.
#pragma once

#include <HavrinFoundation/platform/object/object.h>

namespace havrin {
inline namespace platform {

struct Notifications {
  /// Runs `apply`, which calls the setter of the shown class, between the two halves of a change notification.
  void (*change)(NSObject* object, const SelectorConstant& setter, void (*apply)(void*), void* context);
  /// Ends every observation of an object whose last strong reference has gone, before its destructors run.
  void (*drop)(NSObject* object) noexcept;
};

}  // namespace platform
}  // namespace havrin
