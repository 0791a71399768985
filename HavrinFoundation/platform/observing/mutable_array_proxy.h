// SPDX-License-Identifier: Apache-2.0
// The array that "mutableArrayValueForKey:" returns: it reads the property at every use, and every change goes to the
// property with a notification that says what was inserted, removed or replaced.
#pragma once

#include <HavrinFoundation/platform/foundation/array.h>

namespace havrin {
inline namespace platform {

/// Throws: NSException (InvalidArgument) for a null key.
[[nodiscard]] Strong<NSMutableArray> mutableArrayValueForKey(NSObject& owner, NSString* key);

}  // namespace platform
}  // namespace havrin
