// SPDX-License-Identifier: Apache-2.0
// NSUUID: a universally unique identifier as an object.
//
//   alloc<NSUUID>()->initWithUUIDString(makeString("e621e1f8-c36c-495a-93fc-0c247a3e6e5f"))->uuidString()
//                                                                       "E621E1F8-C36C-495A-93FC-0C247A3E6E5F"
//   alloc<NSUUID>()->initWithUUIDString(makeString("nonsense"))         null
//
// Left out: making new random identifiers.
#pragma once

#include <HavrinFoundation/platform/base/uuid.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSUUID : public Object<NSUUID, NSObject> {
 public:
  using Leaf = NSUUID;

  /// All bits zero, for an init message.
  NSUUID() noexcept = default;
  explicit NSUUID(const UUID& uuid) noexcept : uuid_(uuid) {}

  /// Makes an allocated identifier the one that `text` writes. Result: the identifier to use in its place, here itself;
  /// null for null and where the text is none (see UUID::fromString).
  virtual Strong<NSUUID> initWithUUIDString(NSString* text);

  /// The text form in upper case.
  [[nodiscard]] virtual Strong<NSString> uuidString() const;
  /// The 16 bytes in the order of the text.
  [[nodiscard]] virtual UUID::Bytes getUUIDBytes() const { return uuid_.bytes(); }

  /// The same identifier as a value.
  [[nodiscard]] UUID value() const { return UUID(getUUIDBytes()); }

  /// Equal bytes.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  [[nodiscard]] Strong<NSString> description() const override;
  [[nodiscard]] Strong<NSObject> copy() const override;

  using Protocols = List<NSSecureCoding>;

 private:
  UUID uuid_;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSUUID>();

}  // namespace platform
}  // namespace havrin
