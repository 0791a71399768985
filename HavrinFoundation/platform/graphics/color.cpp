// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/graphics/color.h>

#include <algorithm>

namespace havrin {
inline namespace platform {

CGColor::CGColor(std::optional<CGColorSpace> space, std::span<const double> components) : space_(space) {
  if (components.size() > few_.size()) {
    many_.assign(components.begin(), components.end());
  } else {
    count_ = components.size();
    std::copy(components.begin(), components.end(), few_.begin());
  }
}

bool operator==(const CGColor& a, const CGColor& b) {
  return a.space_ == b.space_ &&
         std::equal(a.components().begin(), a.components().end(), b.components().begin(), b.components().end());
}

}  // namespace platform
}  // namespace havrin
