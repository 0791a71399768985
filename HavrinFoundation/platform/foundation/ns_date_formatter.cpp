// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/ns_date_formatter.h>

#include <HavrinFoundation/platform/object/string.h>

#include <optional>
#include <utility>

namespace havrin {
inline namespace platform {

NSDateFormatter::NSDateFormatter() : format_("", Locale::current(), Calendar::current()) {}

DateFormat NSDateFormatter::format() const {
  const UnfairLockGuard guard(lock_);
  return format_;
}

/// Replaces the format by `change(format)`. The former one is destroyed without the lock.
template <class Change>
void NSDateFormatter::change(Change change) {
  std::optional<DateFormat> former;
  const UnfairLockGuard guard(lock_);
  former = std::exchange(format_, change(format_));
}

Strong<NSString> NSDateFormatter::dateFormat() const { return makeString(format().pattern()); }

void NSDateFormatter::setDateFormat(NSString* pattern) {
  const std::string text = pattern == nullptr ? std::string() : utf8(*pattern);
  change([&](const DateFormat& format) { return DateFormat(text, format.locale(), format.calendar()); });
}

Locale NSDateFormatter::locale() const { return format().locale(); }

void NSDateFormatter::setLocale(const Locale& locale) {
  change([&](const DateFormat& format) { return DateFormat(format.pattern(), locale, format.calendar()); });
}

Calendar NSDateFormatter::calendar() const { return format().calendar(); }

void NSDateFormatter::setCalendar(const Calendar& calendar) {
  change([&](const DateFormat& format) { return DateFormat(format.pattern(), format.locale(), calendar); });
}

Strong<NSString> NSDateFormatter::stringFromDate(const NSDate* date) const {
  return date == nullptr ? nullptr : makeString(format().string(date->value()));
}

Strong<NSDate> NSDateFormatter::dateFromString(const NSString* text) const {
  const std::optional<Date> date = text == nullptr ? std::nullopt : format().date(utf8(*text));
  return date ? make<NSDate>(*date) : nullptr;
}

template ClassObject* buildClass<NSDateFormatter>();

}  // namespace platform
}  // namespace havrin
