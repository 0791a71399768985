// SPDX-License-Identifier: Apache-2.0
// What the runtime's own sources share.
#pragma once

#include <HavrinFoundation/platform/object/class.h>

#include <string_view>

namespace havrin {
inline namespace platform {

/// Throws NSException (InvalidArgument): no method answers. `advice` ends the text.
[[noreturn]] void throwUnrecognized(const ClassObject& cls, std::string_view selector, const NSObject* receiver,
                                    std::string_view advice = {});

/// Releases what is attached to an object whose destructors have run.
void releaseAssociations(NSObject* object) noexcept;

}  // namespace platform
}  // namespace havrin
