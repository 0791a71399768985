// SPDX-License-Identifier: Apache-2.0
// Whether the application runs under a test harness. As a message: test_flag_messages.h.
//
//   IS_EXECUTING_TEST=1 ./app        isExecutingTests(*NSProcessInfo::processInfo()) is true; so for YES, true, 0001, -1
//   IS_EXECUTING_TEST=no ./app       false; so when it is absent, empty or 0
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
