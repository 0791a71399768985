// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/ns_uuid.h>

#include <HavrinFoundation/platform/object/string.h>

namespace havrin {
inline namespace platform {

Strong<NSUUID> NSUUID::initWithUUIDString(NSString* text) {
  if (text == nullptr) return nullptr;
  const std::optional<UUID> uuid = UUID::fromString(utf8(*text));
  if (!uuid) return nullptr;
  uuid_ = *uuid;
  return Strong<NSUUID>(this);
}

Strong<NSString> NSUUID::uuidString() const { return makeString(value().uuidString()); }

bool NSUUID::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSUUID* uuid = cast<NSUUID>(other);
  return uuid != nullptr && value() == uuid->value();
}

std::uint64_t NSUUID::hash() const { return std::hash<UUID>()(value()); }

Strong<NSString> NSUUID::description() const { return uuidString(); }

Strong<NSObject> NSUUID::copy() const { return Strong<NSObject>(const_cast<NSUUID*>(this)); }

template ClassObject* buildClass<NSUUID>();

}  // namespace platform
}  // namespace havrin
