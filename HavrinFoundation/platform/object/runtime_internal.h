// SPDX-License-Identifier: Apache-2.0
// What the runtime's own sources share.
#pragma once

#include <HavrinFoundation/platform/object/class.h>

#include <string_view>
#include <vector>

namespace havrin {
inline namespace platform {

/// Throws NSException (InvalidArgument): no method answers. `advice` ends the text.
[[noreturn]] void throwUnrecognized(const ClassObject& cls, std::string_view selector, const NSObject* receiver,
                                    std::string_view advice = {});

/// The selectors of the methods of a class and its superclasses; those that are overridden come more than once.
[[nodiscard]] std::vector<std::string_view> selectorNames(const ClassObject& cls);

/// Releases what is attached to an object whose destructors have run.
void releaseAssociations(NSObject* object) noexcept;

}  // namespace platform
}  // namespace havrin
