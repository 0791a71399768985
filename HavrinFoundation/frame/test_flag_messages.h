// SPDX-License-Identifier: Apache-2.0
// NSProcessInfo(HavrinFoundation): whether the application runs under a test harness, as a message.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/application/process_info.h>

namespace havrin {
inline namespace platform {

/// As `isExecutingTests(const NSProcessInfo&)`; false for null.
template <>
struct Message<NSProcessInfo, "isExecutingTests"> : Signature<bool()> {};

}  // namespace platform
}  // namespace havrin
