// SPDX-License-Identifier: Apache-2.0
// Millisecond timestamps and calendar arithmetic on date objects: the functions of date_arithmetic.h on NSDate, and as
// messages of NSDate(HavrinFoundation).
//
//   send<"hav_numberOfCalendarDaysToDate:">(yesterday, NSDate::date())             1
//   send<"hav_isAfterDate:">(NSDate::date(), yesterday)                            true
//   send<"initWithMillisecondsSince1970:">(alloc<NSDate>(), 1500)                  1.5 s after 1970-01-01 00:00:00 UTC
//   fromMillisecondsSince1970<MyDate>(1500)                                        the same, as a MyDate
//   isAfter(*now, yesterday->value())                                              true
//
// Throws, in all messages that take dates: NSException (InvalidArgument) for null.
#pragma once

#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>

#include <concepts>
#include <cstdint>

namespace havrin {

/// A date of the receiving class, subclasses included, from `milliseconds` after 1970; the fraction of a second is kept.
/// Sends `initWithTimeIntervalSince1970` to the receiver, so that an override takes part.
template <>
struct platform::Message<NSDate, "initWithMillisecondsSince1970:">
    : Signature<Strong<Self>(std::int64_t milliseconds)> {};
/// As `millisecondsSince1970`.
template <>
struct platform::Message<NSDate, "hav_millisecondsSince1970"> : Signature<std::int64_t()> {};
/// As `isSameMonthAndDayAsToday`.
template <>
struct platform::Message<NSDate, "hav_isSameMonthAndDayAsToday"> : Signature<bool()> {};
/// As `isSameMonthAndDay`.
template <>
struct platform::Message<NSDate, "hav_isSameMonthAndDayAsDate:"> : Signature<bool(NSDate* other)> {};
/// Whether the receiver's `compare` calls it the later of the two.
template <>
struct platform::Message<NSDate, "hav_isAfterDate:"> : Signature<bool(NSDate* other)> {};
/// Whether the receiver's `compare` calls it the earlier of the two.
template <>
struct platform::Message<NSDate, "hav_isBeforeDate:"> : Signature<bool(NSDate* other)> {};
/// As `dateByAddingDays`: a new NSDate, also from a subclass.
template <>
struct platform::Message<NSDate, "hav_dateByAddingDays:"> : Signature<Strong<NSDate>(std::int64_t days)> {};
/// As `numberOfCalendarDays`.
template <>
struct platform::Message<NSDate, "hav_numberOfCalendarDaysToDate:"> : Signature<std::int64_t(NSDate* to)> {};
/// As `numberOfCalendarMinutes`.
template <>
struct platform::ClassMessage<NSDate, "hav_numberOfCalendarMinutesBetweenDate:andDate:">
    : Signature<std::int64_t(NSDate* first, NSDate* second)> {};

/// A date of the class ClassType, which is sent `initWithMillisecondsSince1970:`.
/// Result: never null, unless an override answers null or a date of another class.
template <std::derived_from<NSDate> ClassType>
[[nodiscard]] Strong<ClassType> fromMillisecondsSince1970(std::int64_t milliseconds) {
  const Strong<ClassType> allocated = alloc<ClassType>();
  const Strong<NSObject> made = send<"initWithMillisecondsSince1970:">(static_cast<NSDate&>(*allocated), milliseconds);
  return cast<ClassType>(made);
}

[[nodiscard]] HAVRIN_EXPORT std::int64_t millisecondsSince1970(const NSDate& date);
[[nodiscard]] HAVRIN_EXPORT bool isSameMonthAndDayAsToday(const NSDate& date);
[[nodiscard]] HAVRIN_EXPORT bool isSameMonthAndDay(const NSDate& date, Date other);
/// Whether `date`, asked to `compare` itself with `other`, is the later of the two. Equal instants are neither.
[[nodiscard]] HAVRIN_EXPORT bool isAfter(const NSDate& date, Date other);
/// Whether `date`, asked to `compare` itself with `other`, is the earlier of the two.
[[nodiscard]] HAVRIN_EXPORT bool isBefore(const NSDate& date, Date other);
[[nodiscard]] HAVRIN_EXPORT Date dateByAddingDays(const NSDate& date, std::int64_t days);
[[nodiscard]] HAVRIN_EXPORT std::int64_t numberOfCalendarDays(const NSDate& from, Date to);

/// As `numberOfCalendarMinutes<Date>`.
template <std::derived_from<NSDate> ClassType>
[[nodiscard]] std::int64_t numberOfCalendarMinutes(Date first, Date second) {
  return numberOfCalendarMinutes<Date>(first, second);
}

}  // namespace havrin
