// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/friendly_number_messages.h>

#include <HavrinFoundation/text/friendly_number.h>

namespace havrin {

namespace {

Strong<NSString> friendlyStringWithNumber(ClassOf<NSString>, std::int64_t number) {
  return makeString(friendlyNumber(number));
}

constexpr MethodRow kClassRows[] = {classRow<NSString, "friendlyStringWithNumber:", friendlyStringWithNumber>()};

}  // namespace

extern constinit const Category kFriendlyNumbers{classObject<NSString>, "HavrinFoundation", {}, kClassRows};

}  // namespace havrin
