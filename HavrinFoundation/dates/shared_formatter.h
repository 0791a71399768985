// SPDX-License-Identifier: Apache-2.0
// The formatter of date lines in protocol headers (RFC 1123, section 5.2.14), shared by everybody. As a message:
// shared_formatter_messages.h.
//
//   rfc1123<NSDateFormatter>()->stringFromDate(make<NSDate>(date))       "Tue, 05 Mar 2024 14:30:00 GMT"
//   rfc1123<NSDateFormatter>()->dateFormat()                             "EEE',' dd MMM yyyy HH':'mm':'ss z"
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/ns_date_formatter.h>

#include <concepts>

namespace havrin {

/// The one formatter object for dates of RFC 1123: made at the first call, alive until the process ends. It is changeable,
/// and a change that one caller makes is seen by all. A subclass ClassType gives the same object.
/// Choice: it writes in the POSIX locale, the Gregorian calendar and GMT, whatever the user's are, so that its text is
/// valid in a protocol on every machine.
/// Threads: any; exactly one of the callers that race for the first use makes it.
template <std::derived_from<NSDateFormatter> ClassType>
[[nodiscard]] Strong<NSDateFormatter> rfc1123();
template <>
[[nodiscard]] HAVRIN_EXPORT Strong<NSDateFormatter> rfc1123<NSDateFormatter>();
template <std::derived_from<NSDateFormatter> ClassType>
Strong<NSDateFormatter> rfc1123() {
  return rfc1123<NSDateFormatter>();
}

}  // namespace havrin
