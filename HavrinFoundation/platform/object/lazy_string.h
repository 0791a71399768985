// SPDX-License-Identifier: Apache-2.0
// Constant strings that become objects at their first use, for names that no image lists.
//
//   static constinit const LazyString kKind{"kind"};
//   utf8(*kKind)                            "kind"
//   change->objectForKey(kKind)             converts to NSString*; the object is never destroyed
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/string.h>

#include <atomic>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT LazyString {
 public:
  constexpr explicit LazyString(const char* ascii) : text_(ascii) {}

  /// Cost: a load, after the first use. Threads: any.
  operator NSString*() const {
    NSString* made = string_.load(std::memory_order_acquire);
    return made ? made : build();
  }
  NSString* operator->() const { return *this; }
  NSString& operator*() const { return *operator->(); }

 private:
  NSString* build() const;

  const char* text_;
  mutable std::atomic<NSString*> string_{nullptr};
};

}  // namespace platform
}  // namespace havrin
