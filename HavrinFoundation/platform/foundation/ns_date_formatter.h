// SPDX-License-Identifier: Apache-2.0
// NSDateFormatter: dates as text and back, by a pattern, as an object whose settings may change.
//
//   Strong<NSDateFormatter> formatter = make<NSDateFormatter>();      the user's locale, calendar and zone
//   formatter->setDateFormat(makeString("yyyy-MM-dd"));
//   formatter->stringFromDate(NSDate::date())                         "2024-03-05"
//   formatter->dateFromString(makeString("2024-03-05"))               that day's first instant
//
// A formatter keeps the locale, calendar and zone that the user had when it was made, until it is given others.
// Left out: date and time styles, leniency, symbols of one's own, the calendar and the zone apart from each other.
#pragma once

#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/time/calendar.h>
#include <HavrinFoundation/platform/time/date_format.h>
#include <HavrinFoundation/platform/time/locale.h>

namespace havrin {
inline namespace platform {

/// Threads: any number may format, parse and change the settings; each text is made by one state of them.
class HAVRIN_EXPORT NSDateFormatter : public Object<NSDateFormatter, NSObject> {
 public:
  /// With an empty pattern, in the user's locale, calendar and zone of the moment.
  NSDateFormatter();

  /// The pattern, as it was set.
  [[nodiscard]] virtual Strong<NSString> dateFormat() const;
  /// Null sets the empty pattern, which writes nothing. See date_format.h for what patterns mean.
  virtual void setDateFormat(NSString* pattern);

  [[nodiscard]] virtual Locale locale() const;
  virtual void setLocale(const Locale& locale);

  /// The calendar, in whose time zone dates are written and read.
  [[nodiscard]] virtual Calendar calendar() const;
  virtual void setCalendar(const Calendar& calendar);

  /// The text of a date; null for null.
  [[nodiscard]] virtual Strong<NSString> stringFromDate(const NSDate* date) const;
  /// The date that a text writes; null for null and for a text that does not follow the pattern (see DateFormat::date).
  [[nodiscard]] virtual Strong<NSDate> dateFromString(const NSString* text) const;

 private:
  [[nodiscard]] DateFormat format() const;
  template <class Change>
  void change(Change change);

  mutable os_unfair_lock lock_;
  DateFormat format_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSDateFormatter>();

}  // namespace platform
}  // namespace havrin
