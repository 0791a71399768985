// Small files, read whole. Internal.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace havrin {
inline namespace platform {

/// What stands in the file at `path`.
/// Empty when: there is no such file, it is no regular file (a pipe would never end), it cannot be read, or it holds more
/// than `largest` bytes.
[[nodiscard]] HAVRIN_EXPORT std::optional<std::vector<std::byte>> fileBytes(const std::string& path,
                                                                            std::size_t largest);

}  // namespace platform
}  // namespace havrin
