// SPDX-License-Identifier: Apache-2.0
// The all-zero identifier as an object, and as a message of NSUUID(HavrinFoundation).
//
//   zero<NSUUID>()->uuidString()                               "00000000-0000-0000-0000-000000000000"
//   send<"zero">(classOf<NSUUID>()) == zero<NSUUID>()          true: one object in the process
#pragma once

#include <HavrinFoundation/dates/zero_uuid.h>
#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/ns_uuid.h>

#include <concepts>

namespace havrin {

/// The one identifier object whose 128 bits are all zero: made at the first call, alive until the
/// process ends. A subclass ClassType gives the same object.
template <std::derived_from<NSUUID> ClassType>
[[nodiscard]] Strong<NSUUID> zero();
template <>
[[nodiscard]] HAVRIN_EXPORT Strong<NSUUID> zero<NSUUID>();
template <std::derived_from<NSUUID> ClassType>
Strong<NSUUID> zero() {
  return zero<NSUUID>();
}

/// As `zero<NSUUID>()`, also when sent to a subclass.
template <>
struct platform::ClassMessage<NSUUID, "zero"> : Signature<Strong<NSUUID>()> {};

}  // namespace havrin
