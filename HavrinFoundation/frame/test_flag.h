// SPDX-License-Identifier: Apache-2.0
// Whether the application runs under a test harness. As a message: test_flag_messages.h.
//
//   isExecutingTests(*NSProcessInfo::processInfo())
//           true where IS_EXECUTING_TEST is 1, YES, true, 0001 or -1; false where it is absent, empty, 0 or no
#pragma once

#include <HavrinFoundation/platform/application/process_info.h>
#include <HavrinFoundation/platform/export.h>

namespace havrin {

/// The boolean reading of the environment variable IS_EXECUTING_TEST; false when it is absent. Nothing is kept: the next
/// call sees what has changed.
/// Result: the text's boolValue (NSString).
/// Cost: one pass over the environment; a process-information object with an `environment` of its own
/// is asked for that.
[[nodiscard]] HAVRIN_EXPORT bool isExecutingTests(const NSProcessInfo& process);

}  // namespace havrin
