// SPDX-License-Identifier: Apache-2.0
// How the layer stops a program that breaks a rule which no caller could handle: one line, then abort.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <string_view>

namespace havrin {
inline namespace platform {

/// Writes "<what>: <why>" as one line to the standard error and aborts. Allocates nothing and takes no lock.
[[noreturn]] HAVRIN_EXPORT void abortOnMisuse(std::string_view what, std::string_view why);

}  // namespace platform
}  // namespace havrin
