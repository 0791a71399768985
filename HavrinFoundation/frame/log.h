// SPDX-License-Identifier: Apache-2.0
// Log handles under the library's logging subsystem.
//
//   os_log_t network = hlog_create_with_category("network");
//   os_log(network, "connected");
//   kHLogSubsystem = "org.example.player";        // handles made from now on are the player's
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/log/log.h>

namespace havrin {

/// The subsystem of the handles made next: "com.havrin" until the application points it elsewhere. Exported under this
/// unadorned name. Threads: read at every call without a lock; point it elsewhere while no other thread makes handles.
extern HAVRIN_EXPORT const char* kHLogSubsystem __asm__("kHLogSubsystem");

/// The log handle for the subsystem `kHLogSubsystem` and `category`, both zero-terminated. Lives as long as the process.
/// Exported under this unadorned name.
[[nodiscard]] HAVRIN_EXPORT os_log_t
hlog_create_with_category(const char* category) __asm__("hlog_create_with_category");

}  // namespace havrin
