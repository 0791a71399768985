// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/dates/zero_uuid_messages.h>

#include <HavrinFoundation/platform/object/string.h>

namespace havrin {

template <>
Strong<NSUUID> zero<NSUUID>() {
  static NSUUID* const kZero =
      alloc<NSUUID>()->initWithUUIDString(makeString("00000000-0000-0000-0000-000000000000")).detach();
  return Strong<NSUUID>(kZero);
}

namespace {

Strong<NSUUID> zeroMessage(ClassOf<NSUUID>) { return zero<NSUUID>(); }

constexpr MethodRow kClassRows[] = {classRow<NSUUID, "zero", zeroMessage>()};

}  // namespace

extern constinit const Category kZeroUuid{classObject<NSUUID>, "HavrinFoundation", {}, kClassRows};

}  // namespace havrin
