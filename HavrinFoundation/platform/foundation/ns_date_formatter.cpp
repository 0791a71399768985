#include <HavrinFoundation/platform/foundation/ns_date_formatter.h>

#include <HavrinFoundation/platform/foundation/string.h>

#include <optional>

namespace havrin {
inline namespace platform {

NSDateFormatter::NSDateFormatter() : format_("", Locale::current(), Calendar::current()) {}

DateFormat NSDateFormatter::format() const {
  const std::lock_guard lock(mutex_);
  return format_;
}

/// Puts what `change` makes of the format in its place. The former one goes after the lock.
template <class Change>
void NSDateFormatter::change(Change change) {
  std::unique_lock lock(mutex_);
  DateFormat changed = change(format_);
  std::swap(format_, changed);
  lock.unlock();
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

}  // namespace platform
}  // namespace havrin
