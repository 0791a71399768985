// SPDX-License-Identifier: Apache-2.0
// Which objects can be observed.
#pragma once

#include <HavrinFoundation/platform/object/object.h>

namespace havrin {
inline namespace platform {

/// Throws NSException (InvalidArgument) for arrays, sets, ordered sets and classes.
void requireObservable(const NSObject& object);

}  // namespace platform
}  // namespace havrin
