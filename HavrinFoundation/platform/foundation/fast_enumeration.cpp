// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/fast_enumeration.h>

#include <HavrinFoundation/platform/object/class.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <string>

namespace havrin {
inline namespace platform {

void throwMutatedWhileEnumerated(const NSObject* collection) {
  const std::string name = collection ? std::string(classOf(*collection).name()) : "collection";
  throw NSException(NSGenericException, "the " + name + " was mutated while it was being enumerated");
}

}  // namespace platform
}  // namespace havrin
