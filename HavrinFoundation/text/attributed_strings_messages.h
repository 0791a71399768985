// SPDX-License-Identifier: Apache-2.0
// NSAttributedString(HavrinFoundation): attributed_strings.h as messages.
//
//   send<"initWithOptionalString:">(alloc<NSAttributedString>(), nullptr)     an empty attributed string
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/value.h>

namespace havrin {
inline namespace platform {

/// As `entireRange(const NSAttributedString&)`; {0, 0} for null. By key, an NSValue.
template <>
struct Message<NSAttributedString, "entireRange"> : Signature<NSRange()> {};
/// Calls the receiver's `initWithString` with the string, or with the empty one for null.
template <>
struct Message<NSAttributedString, "initWithOptionalString:"> : Signature<Strong<Self>(NSString*)> {};
/// The same through `initWithStringAttributes`; null attributes are passed on, and are none.
template <>
struct Message<NSAttributedString, "initWithOptionalString:attributes:">
    : Signature<Strong<Self>(NSString*, NSDictionary*)> {};

}  // namespace platform
}  // namespace havrin
