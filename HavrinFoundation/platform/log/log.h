// SPDX-License-Identifier: Apache-2.0
// Log handles, and writing lines to standard error through them.
//
//   os_log_t log = os_log_create("com.havrin", "network");
//   os_log_create("com.havrin", "network") == log             true: one handle for equal texts
//   os_log(log, "connected")                                  2026-05-01 10:00:00.123 com.havrin:network connected
//
// Left out: formats and privacy marks, enabling and disabling levels, signposts, a store of past lines.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <string_view>

namespace havrin {
inline namespace platform {

struct os_log_s;
/// A log handle. Never null; lives until the process ends and needs no release.
using os_log_t = const os_log_s*;

enum class os_log_type_t { standard, info, debug, error, fault };

/// The handle for two zero-terminated texts, which are copied. Equal texts give the same handle.
/// Throws: NSException (InvalidArgument) when a text is null.
/// Cost: a look-up under a lock.
[[nodiscard]] HAVRIN_EXPORT os_log_t os_log_create(const char* subsystem, const char* category);

/// Writes one line: date, time, subsystem, category, level (other than standard), text. Line breaks in the text become
/// blanks.
/// Cost: one system call.
/// Threads: any; lines of different threads do not mix.
HAVRIN_EXPORT void os_log(os_log_t log, std::string_view text, os_log_type_t type = os_log_type_t::standard);

/// The texts of a handle.
[[nodiscard]] HAVRIN_EXPORT std::string_view os_log_subsystem(os_log_t log);
[[nodiscard]] HAVRIN_EXPORT std::string_view os_log_category(os_log_t log);

}  // namespace platform
}  // namespace havrin
