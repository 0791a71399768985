// SPDX-License-Identifier: Apache-2.0
// The XML form of property lists. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/documents/property_list.h>

#include <cstddef>
#include <span>

namespace havrin {
inline namespace platform {

/// Reads the XML form; see readPropertyList.
[[nodiscard]] Decoded<PropertyList> readXmlPropertyList(std::span<const std::byte> bytes);

}  // namespace platform
}  // namespace havrin
