// SPDX-License-Identifier: Apache-2.0
// Where tests see each creation of a log handle, with the pointers as the caller gave them. Internal.
#pragma once

#include <atomic>

namespace havrin {
inline namespace platform {

extern constinit std::atomic<void (*)(const char* subsystem, const char* category)> logCreationSeen;

}  // namespace platform
}  // namespace havrin
