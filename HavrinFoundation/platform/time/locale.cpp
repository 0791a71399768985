// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/locale.h>

#include <HavrinFoundation/platform/time/environment.h>

#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/resbund.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

constexpr const char* kPosix = "en_US_POSIX";

/// Longer names are not locales.
constexpr std::size_t kMaxNameLength = 255;

struct NamedCalendar {
  std::string_view name;
  CalendarIdentifier calendar;
};

constexpr std::array<NamedCalendar, 16> kCalendars = {{
    {"gregorian", CalendarIdentifier::gregorian},
    {"buddhist", CalendarIdentifier::buddhist},
    {"chinese", CalendarIdentifier::chinese},
    {"coptic", CalendarIdentifier::coptic},
    {"dangi", CalendarIdentifier::dangi},
    {"ethiopic", CalendarIdentifier::ethiopic},
    {"ethiopic-amete-alem", CalendarIdentifier::ethiopicAmeteAlem},
    {"hebrew", CalendarIdentifier::hebrew},
    {"indian", CalendarIdentifier::indian},
    {"islamic", CalendarIdentifier::islamic},
    {"islamic-civil", CalendarIdentifier::islamicCivil},
    {"islamic-tbla", CalendarIdentifier::islamicTabular},
    {"islamic-umalqura", CalendarIdentifier::islamicUmmAlQura},
    {"japanese", CalendarIdentifier::japanese},
    {"persian", CalendarIdentifier::persian},
    {"roc", CalendarIdentifier::republicOfChina},
}};

const NamedCalendar* find(std::string_view name) {
  const auto found =
      std::find_if(kCalendars.begin(), kCalendars.end(), [name](const NamedCalendar& row) { return row.name == name; });
  return found == kCalendars.end() ? nullptr : &*found;
}

bool isPosixName(std::string_view name) {
  const std::string_view base = name.substr(0, name.find_first_of(".@"));
  return base.empty() || base == "C" || base == "POSIX";
}

/// Whether there is data for the language itself, and not only what ICU falls back to.
bool isKnown(const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::ResourceBundle bundle(nullptr, locale, status);
  return U_SUCCESS(status) && status != U_USING_DEFAULT_WARNING;
}

std::string canonicalName(std::string_view name) {
  if (isPosixName(name) || name.size() > kMaxNameLength) return kPosix;
  icu::Locale locale = icu::Locale::createCanonical(std::string(name).c_str());
  if (locale.isBogus() || *locale.getLanguage() == '\0' || !isKnown(locale)) return kPosix;
  UErrorCode status = U_ZERO_ERROR;
  const std::string calendar = locale.getKeywordValue<std::string>("calendar", status);
  if (!calendar.empty() && find(calendar) == nullptr) {
    status = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", nullptr, status);
  }
  return locale.getName();
}

}  // namespace

std::string_view nameOf(CalendarIdentifier calendar) {
  return kCalendars[static_cast<std::size_t>(calendar) - static_cast<std::size_t>(CalendarIdentifier::gregorian)].name;
}

Locale Locale::current() { return Locale(readTimeEnvironment().locale()); }

Locale Locale::posix() { return Locale("POSIX"); }

Locale::Locale(std::string_view name) : identifier_(canonicalName(name)) {}

CalendarIdentifier Locale::calendar() const {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Calendar> calendar(
      icu::Calendar::createInstance(icu::TimeZone::getGMT()->clone(), icu::Locale(identifier_.c_str()), status));
  const NamedCalendar* found = calendar == nullptr ? nullptr : find(calendar->getType());
  return found == nullptr ? CalendarIdentifier::gregorian : found->calendar;
}

}  // namespace platform
}  // namespace havrin
