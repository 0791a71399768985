// Property lists as objects. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/documents/property_list.h>
#include <HavrinFoundation/platform/object/object.h>

namespace havrin {
inline namespace platform {

/// `list` as strings, numbers, dates, data, arrays and dictionaries; parts that are shared stay shared.
/// Null when: it is a UID; UIDs are left out of arrays and dictionaries.
[[nodiscard]] Strong<NSObject> objectOf(const PropertyList& list);

}  // namespace platform
}  // namespace havrin
