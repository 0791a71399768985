// NSProcessInfo(HavrinFoundation): whether the application runs under a test harness, as a message.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/application/process_info.h>

namespace havrin::inline platform {

/// As `isExecutingTests(const NSProcessInfo&)`; false for null.
template <>
struct Message<NSProcessInfo, "isExecutingTests"> : Signature<bool()> {};

}  // namespace havrin::inline platform
