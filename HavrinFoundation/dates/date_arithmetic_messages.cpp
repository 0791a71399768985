// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/dates/date_arithmetic_messages.h>

#include <HavrinFoundation/platform/object/argument_errors.h>

#include <string_view>

namespace havrin {
namespace {

// Dates are read in one order: the receiver, then the arguments from left to right. A subclass's reader may run any code.
const NSDate& required(const NSObject& receiver, std::string_view selector, const NSDate* date) {
  if (date == nullptr) throwNullArgument(receiver, selector, "date");
  return *date;
}

bool isLater(const NSDate& date, const NSDate& other) {
  return date.compare(&other) == NSComparisonResult::NSOrderedDescending;
}

bool isEarlier(const NSDate& date, const NSDate& other) {
  return date.compare(&other) == NSComparisonResult::NSOrderedAscending;
}

}  // namespace

std::int64_t millisecondsSince1970(const NSDate& date) { return millisecondsSince1970(date.value()); }

bool isSameMonthAndDayAsToday(const NSDate& date) { return isSameMonthAndDayAsToday(date.value()); }

bool isSameMonthAndDay(const NSDate& date, Date other) { return isSameMonthAndDay(date.value(), other); }

bool isAfter(const NSDate& date, Date other) { return isLater(date, *make<NSDate>(other)); }

bool isBefore(const NSDate& date, Date other) { return isEarlier(date, *make<NSDate>(other)); }

Date dateByAddingDays(const NSDate& date, std::int64_t days) { return dateByAddingDays(date.value(), days); }

std::int64_t numberOfCalendarDays(const NSDate& from, Date to) { return numberOfCalendarDays(from.value(), to); }

namespace {

Strong<NSDate> initWithMilliseconds(NSDate& self, std::int64_t milliseconds) {
  return self.initWithTimeIntervalSince1970(static_cast<double>(milliseconds) / 1000.0);
}

std::int64_t milliseconds(NSDate& self) { return millisecondsSince1970(self); }

bool isToday(NSDate& self) { return isSameMonthAndDayAsToday(self); }

bool isSameDay(NSDate& self, NSDate* other) {
  const NSDate& argument = required(self, "hav_isSameMonthAndDayAsDate:", other);
  const Date date = self.value();
  return isSameMonthAndDay(date, argument.value());
}

bool isAfterDate(NSDate& self, NSDate* other) { return isLater(self, required(self, "hav_isAfterDate:", other)); }

bool isBeforeDate(NSDate& self, NSDate* other) { return isEarlier(self, required(self, "hav_isBeforeDate:", other)); }

Strong<NSDate> addDays(NSDate& self, std::int64_t days) { return make<NSDate>(dateByAddingDays(self, days)); }

std::int64_t daysTo(NSDate& self, NSDate* to) {
  const NSDate& argument = required(self, "hav_numberOfCalendarDaysToDate:", to);
  const Date from = self.value();
  return numberOfCalendarDays(from, argument.value());
}

std::int64_t minutesBetween(ClassOf<NSDate> self, NSDate* first, NSDate* second) {
  constexpr std::string_view kSelector = "hav_numberOfCalendarMinutesBetweenDate:andDate:";
  const NSObject& receiver = *static_cast<NSObject*>(self);
  const Date from = required(receiver, kSelector, first).value();
  return numberOfCalendarMinutes<NSDate>(from, required(receiver, kSelector, second).value());
}

constexpr MethodRow kRows[] = {row<NSDate, "initWithMillisecondsSince1970:", initWithMilliseconds>(),
                               row<NSDate, "hav_millisecondsSince1970", milliseconds>(),
                               row<NSDate, "hav_isSameMonthAndDayAsToday", isToday>(),
                               row<NSDate, "hav_isSameMonthAndDayAsDate:", isSameDay>(),
                               row<NSDate, "hav_isAfterDate:", isAfterDate>(),
                               row<NSDate, "hav_isBeforeDate:", isBeforeDate>(),
                               row<NSDate, "hav_dateByAddingDays:", addDays>(),
                               row<NSDate, "hav_numberOfCalendarDaysToDate:", daysTo>()};
constexpr MethodRow kClassRows[] = {
    classRow<NSDate, "hav_numberOfCalendarMinutesBetweenDate:andDate:", minutesBetween>()};

}  // namespace

extern constinit const Category kDateArithmetic{classObject<NSDate>, "HavrinFoundation", kRows, kClassRows};

}  // namespace havrin
