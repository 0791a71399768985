// SPDX-License-Identifier: Apache-2.0
// What can be shared: objects that have a link for others.
#pragma once

#include <HavrinFoundation/platform/object/message.h>
#include <HavrinFoundation/platform/object/protocol.h>
#include <HavrinFoundation/platform/object/string.h>

namespace radio {

/// Adopted by classes that answer `shareLink`.
struct Shareable : havrin::Protocol<Shareable> {};

}  // namespace radio

namespace havrin {
inline namespace platform {

/// The link as it is shared: with the campaign that the sharing is counted under.
template <>
struct Message<NSObject, "shareLink"> : Signature<Strong<NSString>()> {};

}  // namespace platform
}  // namespace havrin
