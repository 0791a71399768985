// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/runtime/insecure_unarchiving_messages.h>

#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/set.h>

namespace havrin {

namespace {

// Only the object is decoded: the unarchiver is released without `finishDecoding`, and its error with it.
template <class Decode>
Strong<NSObject> unarchived(ClassOf<NSKeyedUnarchiver> self, NSData* data, Strong<NSError>* error, Decode decode) {
  if (!data) return nullptr;
  const Strong<NSKeyedUnarchiver> unarchiver = alloc(self)->initForReadingFromData(data, error);
  if (!unarchiver) return nullptr;
  unarchiver->setRequiresSecureCoding(false);
  return decode(*unarchiver);
}

Strong<NSObject> ofClass(ClassOf<NSKeyedUnarchiver> self, Class cls, NSData* data, Strong<NSError>* error) {
  return unarchived(self, data, error, [cls](NSKeyedUnarchiver& unarchiver) {
    return unarchiver.decodeObjectOfClass(cls, NSKeyedArchiveRootObjectKey);
  });
}

Strong<NSObject> ofClasses(ClassOf<NSKeyedUnarchiver> self, NSSet* classes, NSData* data, Strong<NSError>* error) {
  return unarchived(self, data, error, [classes](NSKeyedUnarchiver& unarchiver) {
    return unarchiver.decodeObjectOfClasses(classes, NSKeyedArchiveRootObjectKey);
  });
}

constexpr MethodRow kClassRows[] = {
    classRow<NSKeyedUnarchiver, "insecureUnarchivedObjectOfClass:fromData:error:", ofClass>(),
    classRow<NSKeyedUnarchiver, "insecureUnarchivedObjectOfClasses:fromData:error:", ofClasses>()};

}  // namespace

extern constinit const Category kInsecureUnarchiving{
    classObject<NSKeyedUnarchiver>, "HavrinFoundation", {}, kClassRows};

}  // namespace havrin
