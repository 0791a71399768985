// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/dates/shared_formatter_messages.h>

#include <HavrinFoundation/dates/shared_formatter.h>

namespace havrin {
namespace {

Strong<NSDateFormatter> rfc1123Formatter(ClassOf<NSDateFormatter>) { return rfc1123<NSDateFormatter>(); }

constexpr MethodRow kClassRows[] = {classRow<NSDateFormatter, "hav_rfc1123Formatter", rfc1123Formatter>()};

}  // namespace

extern constinit const Category kSharedFormatter{classObject<NSDateFormatter>, "HavrinFoundation", {}, kClassRows};

}  // namespace havrin
