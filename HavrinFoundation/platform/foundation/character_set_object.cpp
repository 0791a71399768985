// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/character_set_object.h>

namespace havrin {
inline namespace platform {

Strong<NSCharacterSet> NSCharacterSet::invertedSet() const { return makeCharacterSet(characterSet().inverted()); }

bool NSCharacterSet::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSCharacterSet* set = cast<NSCharacterSet>(other);
  return set && characterSet() == set->characterSet();
}

std::uint64_t NSCharacterSet::hash() const { return characterSet().hash(); }

Strong<NSObject> NSCharacterSet::copy() const { return Strong<NSObject>(const_cast<NSCharacterSet*>(this)); }

Strong<NSObject> NSCharacterSet::mutableCopy() const { return make<NSMutableCharacterSet>(characterSet()); }

Strong<NSObject> NSMutableCharacterSet::copy() const { return makeCharacterSet(characterSet()); }

Strong<NSCharacterSet> makeCharacterSet(CharacterSet set) { return make<NSCharacterSet>(std::move(set)); }

template ClassObject* buildClass<NSCharacterSet>();
template ClassObject* buildClass<NSMutableCharacterSet>();

}  // namespace platform
}  // namespace havrin
