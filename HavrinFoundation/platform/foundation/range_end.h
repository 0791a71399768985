// SPDX-License-Identifier: Apache-2.0
// endOf({3, 4}) is 7: the position after a range that does not overflow. Internal to foundation/.
#pragma once

#include <HavrinFoundation/platform/base/range.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

[[nodiscard]] constexpr std::uint64_t endOf(const NSRange& range) { return range.location + range.length; }

}  // namespace platform
}  // namespace havrin
