// SPDX-License-Identifier: Apache-2.0
// Conversion of property lists to objects. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/documents/property_list.h>
#include <HavrinFoundation/platform/object/object.h>

namespace havrin {
inline namespace platform {

/// `list` as strings, numbers, dates, data, arrays and dictionaries; shared parts stay shared.
/// Null when: it is a UID. UIDs inside arrays and dictionaries are dropped.
[[nodiscard]] Strong<NSObject> objectOf(const PropertyList& list);

}  // namespace platform
}  // namespace havrin
