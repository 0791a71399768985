// SPDX-License-Identifier: Apache-2.0
// The text of the system's last error.
#pragma once

#include <cerrno>
#include <string>
#include <system_error>

namespace radio {

/// "No such file or directory", after a call that sets errno.
[[nodiscard]] inline std::string errorText() { return std::generic_category().message(errno); }

}  // namespace radio
