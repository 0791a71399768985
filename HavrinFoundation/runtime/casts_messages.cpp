// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/runtime/casts_messages.h>

namespace havrin {

namespace {

Strong<NSObject> ifInstance(ClassOf<NSObject> self, NSObject* object) {
  return Strong<NSObject>(object && object->isKindOfClass(self) ? object : nullptr);
}

Strong<NSObject> ifConformance(NSObject& self, const AnyProtocol& protocol) {
  return Strong<NSObject>(self.conformsToProtocol(protocol) ? &self : nullptr);
}

bool isAnyKindOfClass(NSObject& self, NSFastEnumeration* classes) {
  if (!classes) return false;
  for (NSObject* element : each(*classes)) {
    const Class cls = Class::from(element);
    if (!cls) throwWrongClass(element, "class");
    if (self.isKindOfClass(cls)) return true;
  }
  return false;
}

constexpr MethodRow kRows[] = {row<NSObject, "ifConformance:", ifConformance>(),
                               row<NSObject, "isAnyKindOfClass:", isAnyKindOfClass>()};
constexpr MethodRow kClassRows[] = {classRow<NSObject, "ifInstance:", ifInstance>()};

}  // namespace

extern constinit const Category kCasts{classObject<NSObject>, "Cast", kRows, kClassRows};

}  // namespace havrin
