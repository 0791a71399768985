// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/date.h>

#include <HavrinFoundation/platform/base/clock.h>

namespace havrin {
inline namespace platform {

Date Date::now() { return fromTimeIntervalSince1970(wallSecondsSince1970()); }

}  // namespace platform
}  // namespace havrin
