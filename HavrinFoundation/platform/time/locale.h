// SPDX-License-Identifier: Apache-2.0
// Locales: whose words and whose calendar.
//
//   Locale("de_DE.UTF-8").identifier()                 "de_DE"
//   Locale("th_TH").calendar()                         CalendarIdentifier::buddhist
//   Locale("th_TH@calendar=gregorian").calendar()      CalendarIdentifier::gregorian
//   Locale("en-US-u-ca-hebrew").calendar()             CalendarIdentifier::hebrew
//   Locale("C.UTF-8") == Locale::posix()               true
//
// A locale need not be installed on the system: its data comes with ICU.
//
// Left out: everything but dates: collation, numbers, measures, names of languages.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// The calendar systems.
enum class CalendarIdentifier {
  gregorian = 1,
  buddhist,
  chinese,
  coptic,
  dangi,
  ethiopic,
  ethiopicAmeteAlem,
  hebrew,
  indian,
  islamic,
  islamicCivil,
  islamicTabular,
  islamicUmmAlQura,
  japanese,
  persian,
  republicOfChina,
};

/// The name of a calendar system in Unicode's locale data, such as "islamic-umalqura".
[[nodiscard]] HAVRIN_EXPORT std::string_view nameOf(CalendarIdentifier calendar);

/// A language, a region and what a user prefers in them.
class HAVRIN_EXPORT Locale {
 public:
  /// The user's locale for dates: the first of LC_ALL, LC_TIME and LANG that is set and not empty, else POSIX.
  /// Threads: any, as long as none changes the environment meanwhile.
  [[nodiscard]] static Locale current();

  /// The locale of programs: English texts and the Gregorian calendar, on every machine.
  [[nodiscard]] static Locale posix();

  /// The locale that `name` gives, in the form of POSIX ("fr_FR.UTF-8", "C", "en_US@calendar=hebrew") or of BCP 47
  /// ("th-TH-u-ca-gregory"). "C", "POSIX", and a language for which there is no data, give `posix`.
  explicit Locale(std::string_view name);

  /// The canonical name, without a codeset, with the calendar where the name asked for one that exists.
  [[nodiscard]] const std::string& identifier() const { return identifier_; }

  /// The calendar that the name asks for, else the usual one of the region.
  [[nodiscard]] CalendarIdentifier calendar() const;

  friend bool operator==(const Locale&, const Locale&) = default;

 private:
  std::string identifier_;
};

}  // namespace platform
}  // namespace havrin
