#include <HavrinFoundation/platform/foundation/object_table.h>

#include <cstdlib>

namespace havrin::inline platform {

// Not from random.h: what a test puts in its stead is no secret, and counts what is drawn.
std::uint64_t objectTableMultiplier() {
  static const std::uint64_t kMultiplier = std::uint64_t{::arc4random()} << 32 | ::arc4random() | 1;
  return kMultiplier;
}

}  // namespace havrin::inline platform
