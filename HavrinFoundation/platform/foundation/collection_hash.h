// SPDX-License-Identifier: Apache-2.0
// What elements contribute to the hash of the collection that they are in. For the project's own sources.
#pragma once

#include <HavrinFoundation/platform/object/object.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// The hash of an element; 0 of null and of a collection, which may hold the one that it is in.
[[nodiscard]] std::uint64_t elementHash(const NSObject* element);

/// Spreads the bits of a hash, so that those of different elements may be added up in any order.
[[nodiscard]] constexpr std::uint64_t mixedHash(std::uint64_t hash) {
  hash = (hash ^ hash >> 32) * 0xD6E8'FEB8'6659'FD93;
  return hash ^ hash >> 32;
}

}  // namespace platform
}  // namespace havrin
