// SPDX-License-Identifier: Apache-2.0
// The identifier for where one is required and none exists. As an object, and as a message: zero_uuid_messages.h.
//
//   zero<UUID>().uuidString()      "00000000-0000-0000-0000-000000000000"
#pragma once

#include <HavrinFoundation/platform/base/uuid.h>

#include <concepts>

namespace havrin {

/// The identifier whose 128 bits are all zero.
template <std::same_as<UUID> ClassType>
[[nodiscard]] constexpr ClassType zero() {
  return UUID();
}

}  // namespace havrin
