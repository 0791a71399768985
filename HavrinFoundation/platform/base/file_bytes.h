// SPDX-License-Identifier: Apache-2.0
// Small files, read whole. Internal.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace havrin {
inline namespace platform {

/// The content of the file at `path`.
/// Empty when: there is no such file, it is not a regular file (a pipe would never end), it cannot be read, or it holds
/// more than `largest` bytes.
[[nodiscard]] HAVRIN_EXPORT std::optional<std::vector<std::byte>> fileBytes(const std::string& path,
                                                                            std::size_t largest);

}  // namespace platform
}  // namespace havrin
