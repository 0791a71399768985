// SPDX-License-Identifier: Apache-2.0
// operator<< for the value types, so that logs and failed test assertions show them. Objects: object_printing.h; {fmt}:
// formatting.h. Not in the umbrella header: a file that uses it includes it.
//
//   std::ostringstream out;
//   out << *URL::fromString("../d", *URL::fromString("https://h/a/b/c")) << ' ' << NSRange{0, 2};
//   out.str()                                                                   "https://h/a/d {0, 2}"
//   (std::ostringstream() << Date()).str()                                      "2001-01-01 00:00:00 +0000"
//   (std::ostringstream() << DateComponents{.year = 2024, .month = 3}).str()    "{year 2024, month 3}"
//
// The texts are for people; a later version may change them. The stream's width pads the whole text.
// Left out: reading values from streams; values that have a description() of their own, such as CodingPath.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/base/uuid.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/graphics/color.h>
#include <HavrinFoundation/platform/net/url.h>
#include <HavrinFoundation/platform/net/url_components.h>
#include <HavrinFoundation/platform/time/calendar.h>
#include <HavrinFoundation/platform/time/date.h>
#include <HavrinFoundation/platform/time/date_format.h>
#include <HavrinFoundation/platform/time/locale.h>
#include <HavrinFoundation/platform/time/zone.h>

#include <concepts>
#include <ostream>
#include <string>
#include <string_view>

namespace havrin {

namespace detail {

[[nodiscard]] HAVRIN_EXPORT std::string printed(const Calendar& calendar);
[[nodiscard]] HAVRIN_EXPORT std::string printed(const CGColor& color);
[[nodiscard]] HAVRIN_EXPORT std::string printed(const DateComponents& components);
[[nodiscard]] HAVRIN_EXPORT std::string printed(const NSRange& range);
[[nodiscard]] inline std::string printed(Date date) { return utcText(date); }
[[nodiscard]] inline std::string printed(const Locale& locale) { return locale.identifier(); }
[[nodiscard]] inline std::string printed(const TimeZone& zone) { return std::string(zone.name()); }
[[nodiscard]] inline std::string printed(const URL& url) { return url.absoluteString(); }
[[nodiscard]] inline std::string printed(const URLQueryItem& item) { return item.text(); }
[[nodiscard]] inline std::string printed(const UUID& uuid) { return uuid.uuidString(); }

template <class Type, class... Others>
concept OneOf = (std::same_as<Type, Others> || ...);

/// How values of a type are printed: `text(value)`. Exact types only: nothing is printed that merely converts to one.
template <class Type>
struct Printing;

template <OneOf<Calendar, CGColor, Date, DateComponents, Locale, NSRange, TimeZone, URL, URLQueryItem, UUID> Type>
struct Printing<Type> {
  static std::string text(const Type& value) { return printed(value); }
};

template <class Type>
concept Printed = requires(const Type& value) {
  Printing<Type>::text(value);
};

}  // namespace detail

/// Writes a readable text of `value`.
template <detail::Printed Type>
std::ostream& operator<<(std::ostream& out, const Type& value) {
  return out << std::string_view(detail::Printing<Type>::text(value));
}

}  // namespace havrin
