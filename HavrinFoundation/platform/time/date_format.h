// SPDX-License-Identifier: Apache-2.0
// Dates as text, and text as dates, by patterns (Unicode Technical Standard 35, part 4, "Date Field Symbols").
//
//   const Calendar gmt(CalendarIdentifier::gregorian, TimeZone::gmt());
//   const DateFormat http("EEE',' dd MMM yyyy HH':'mm':'ss z", Locale::posix(), gmt);
//   http.string(Date::fromTimeIntervalSince1970(1709649000))          "Tue, 05 Mar 2024 14:30:00 GMT"
//   http.date("Tue, 05 Mar 2024 09:30:00 EST")                        the same instant
//   http.date("Tue, 35 Mar 2024 14:30:00 GMT")                        empty
//
// Left out: date and time styles, relative dates, intervals, the user's switch between 12 and 24 hours, leniency.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/time/calendar.h>
#include <HavrinFoundation/platform/time/date.h>
#include <HavrinFoundation/platform/time/locale.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// A pattern with the locale whose words it writes and the calendar, with its time zone, whose fields it writes. A
/// value that never changes and that copies share. Offsets are those of the system's zone files, words are ICU's.
/// Threads: any number may format and parse at the same time.
class HAVRIN_EXPORT DateFormat {
 public:
  /// Compiles `pattern`.
  /// Cost: tens of microseconds; words are looked up here.
  DateFormat(std::string_view pattern, const Locale& locale, const Calendar& calendar);

  [[nodiscard]] const std::string& pattern() const;
  [[nodiscard]] const Locale& locale() const;
  [[nodiscard]] const Calendar& calendar() const;

  /// `date` as text. Fractions of a second are rounded down, after noise below a microsecond.
  /// Result: empty for NaN, and for a pattern with unknown letters; the calendar's first or last
  /// instant where `date` lies beyond it.
  /// Cost: well under a tenth of a microsecond for Gregorian dates and clock times in digits and names, with a zone
  /// name only in GMT; several microseconds, in ICU, for all else.
  [[nodiscard]] std::string string(Date date) const;

  /// The instant that `text` writes. Names are read in any case; a zone in the text overrules the calendar's.
  /// Result: fields that the pattern lacks are those of 1970-01-01 00:00:00.
  /// Empty when: the text does not follow the pattern to its end, blanks behind it apart; a field is out of its range;
  /// the clock never showed that time. A wrong weekday is not an error.
  [[nodiscard]] std::optional<Date> date(std::string_view text) const;

 private:
  class Compiled;
  std::shared_ptr<const Compiled> compiled_;
};

/// `date` to the second in UTC, for people: "2024-03-05 14:30:00 +0000". Empty for NaN.
[[nodiscard]] HAVRIN_EXPORT std::string utcText(Date date);

}  // namespace platform
}  // namespace havrin
