// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/collection_hash.h>

#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/foundation/set.h>

namespace havrin {
inline namespace platform {

std::uint64_t elementHash(const NSObject* element) {
  const bool isCollection = isKind<NSArray>(element) || isKind<NSDictionary>(element) || isKind<NSSet>(element) ||
                            isKind<NSOrderedSet>(element);
  return element && !isCollection ? element->hash() : 0;
}

}  // namespace platform
}  // namespace havrin
