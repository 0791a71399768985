// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/lazy_string.h>

namespace havrin {
inline namespace platform {

NSString* LazyString::build() const {
  Strong<NSString> made = makeString(text_);
  NSString* standing = nullptr;
  if (string_.compare_exchange_strong(standing, made.get(), std::memory_order_acq_rel, std::memory_order_acquire)) {
    return made.detach();
  }
  return standing;
}

}  // namespace platform
}  // namespace havrin
