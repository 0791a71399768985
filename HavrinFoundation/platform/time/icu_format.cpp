// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/icu_format.h>

#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/time/instant.h>
#include <HavrinFoundation/platform/time/system_zone.h>
#include <HavrinFoundation/platform/time/zone_rules.h>

#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <chrono>
#include <cmath>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {
namespace {

constexpr std::int32_t kMillisecondsPerHour = 3'600'000;

/// The identifier by which ICU finds a zone's names; rules without a name are called by their offset.
icu::UnicodeString icuIdentifier(const ZoneRules& rules) {
  return rules.name().empty() ? icu::UnicodeString(u"Etc/Unknown") : icu::UnicodeString::fromUTF8(rules.name());
}

/// The whole second that begins at or before `date`, milliseconds since 1970, inside the calendars' range.
std::int64_t secondAt(UDate date) {
  const double second = std::floor(date / 1000);
  if (!(second > static_cast<double>(kFirstSecond))) return kFirstSecond;  // not-a-number too
  return second < static_cast<double>(kLastSecond) ? static_cast<std::int64_t>(second) : kLastSecond;
}

/// ICU's own zones carry rules that are as old as ICU; this one asks the system's zone files.
class IcuZone final : public icu::TimeZone {
 public:
  explicit IcuZone(const ZoneRules& rules);
  IcuZone(const IcuZone& other);
  IcuZone& operator=(const IcuZone&) = delete;

  IcuZone* clone() const override { return new IcuZone(*this); }

  using icu::TimeZone::getOffset;
  void getOffset(UDate date, UBool local, std::int32_t& raw, std::int32_t& savings, UErrorCode& status) const override;
  std::int32_t getOffset(std::uint8_t era, std::int32_t year, std::int32_t month, std::int32_t day,
                         std::uint8_t weekday, std::int32_t millis, UErrorCode& status) const override;
  std::int32_t getOffset(std::uint8_t era, std::int32_t year, std::int32_t month, std::int32_t day,
                         std::uint8_t weekday, std::int32_t millis, std::int32_t monthLength,
                         UErrorCode& status) const override;
  std::int32_t getRawOffset() const override;
  void setRawOffset(std::int32_t) override {}
  UBool useDaylightTime() const override { return true; }
  UBool inDaylightTime(UDate date, UErrorCode& status) const override;
  UClassID getDynamicClassID() const override;

 private:
  const ZoneRules& rules_;
  const std::unique_ptr<const icu::TimeZone> names_;  // ICU's own zone of that name
};

IcuZone::IcuZone(const ZoneRules& rules)
    : icu::TimeZone(icuIdentifier(rules)), rules_(rules), names_(createTimeZone(icuIdentifier(rules))) {}

IcuZone::IcuZone(const IcuZone& other) : icu::TimeZone(other), rules_(other.rules_), names_(other.names_->clone()) {}

void IcuZone::getOffset(UDate date, UBool local, std::int32_t& raw, std::int32_t& savings, UErrorCode& status) const {
  std::int64_t second = secondAt(date);
  if (local) second = rules_.wallTime(second).late;
  const std::int32_t offset = static_cast<std::int32_t>(rules_.offsetAt(second)) * 1000;
  // Which of the zone's two names a time bears is ICU's to say wherever it has the right offset: it counts Dublin's
  // summer as daylight saving, the zone file does not.
  names_->getOffset(static_cast<double>(second) * 1000, false, raw, savings, status);
  if (raw + savings == offset) return;
  savings = rules_.isDaylightAt(second) ? kMillisecondsPerHour : 0;
  raw = offset - savings;
}

std::int32_t IcuZone::getOffset(std::uint8_t era, std::int32_t year, std::int32_t month, std::int32_t day,
                                std::uint8_t weekday, std::int32_t millis, UErrorCode& status) const {
  return getOffset(era, year, month, day, weekday, millis, 31, status);
}

std::int32_t IcuZone::getOffset(std::uint8_t era, std::int32_t year, std::int32_t month, std::int32_t day, std::uint8_t,
                                std::int32_t millis, std::int32_t, UErrorCode& status) const {
  using namespace std::chrono;
  const auto first =
      std::chrono::year(era == 0 ? 1 - year : year) / std::chrono::month(static_cast<unsigned>(month + 1));
  const sys_days midnight = sys_days(first / 1) + days(day - 1);
  std::int32_t raw = 0;
  std::int32_t savings = 0;
  getOffset(static_cast<double>(milliseconds(midnight.time_since_epoch()).count()) + millis, true, raw, savings,
            status);
  return raw + savings;
}

std::int32_t IcuZone::getRawOffset() const { return names_->getRawOffset(); }

UBool IcuZone::inDaylightTime(UDate date, UErrorCode& status) const {
  std::int32_t raw = 0;
  std::int32_t savings = 0;
  getOffset(date, false, raw, savings, status);
  return savings != 0;
}

/// ICU's way of asking for a class: the address is the answer.
UClassID IcuZone::getDynamicClassID() const {
  static const char identity = 0;
  return const_cast<char*>(&identity);
}

/// A zone that the text named is one of ICU's: ours of the same name takes its place, unless the text said the offset.
void adoptOurRules(icu::Calendar& calendar) {
  if (calendar.isSet(UCAL_ZONE_OFFSET)) return;
  icu::UnicodeString identifier;
  std::string name;
  calendar.getTimeZone().getID(identifier).toUTF8String(name);
  if (const ZoneRules* rules = rulesNamed(name)) calendar.adoptTimeZone(new IcuZone(*rules));
}

bool isBlank(const icu::UnicodeString& text, std::int32_t from) {
  for (std::int32_t i = from; i < text.length(); ++i) {
    if (text[i] != u' ' && text[i] != u'\t') return false;
  }
  return true;
}

}  // namespace

std::string icuLocaleName(const Locale& locale, CalendarIdentifier calendar) {
  icu::Locale result(locale.identifier().c_str());
  UErrorCode status = U_ZERO_ERROR;
  result.setKeywordValue("calendar", std::string(nameOf(calendar)).c_str(), status);
  return result.getName();
}

/// ICU's formatters that nobody uses at the moment.
class IcuFormat::Pool {
 public:
  Pool(std::string_view pattern, std::string locale, const ZoneRules& rules)
      : pattern_(pattern), locale_(std::move(locale)), rules_(rules) {}

  /// What `use` gives for a formatter that is its own for the call; an empty result where ICU makes none.
  template <class Use>
  auto with(Use use) {
    std::unique_ptr<icu::SimpleDateFormat> formatter = take();
    if (formatter == nullptr) return decltype(use(*formatter))();
    auto result = use(*formatter);
    const UnfairLockGuard guard(lock_);
    idle_.push_back(std::move(formatter));
    return result;
  }

 private:
  std::unique_ptr<icu::SimpleDateFormat> take() {
    {
      const UnfairLockGuard guard(lock_);
      if (!idle_.empty()) {
        std::unique_ptr<icu::SimpleDateFormat> formatter = std::move(idle_.back());
        idle_.pop_back();
        return formatter;
      }
    }
    UErrorCode status = U_ZERO_ERROR;
    auto formatter = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString::fromUTF8(pattern_),
                                                             icu::Locale(locale_.c_str()), status);
    if (U_FAILURE(status)) return nullptr;
    formatter->adoptTimeZone(new IcuZone(rules_));
    formatter->setLenient(false);
    return formatter;
  }

  const std::string pattern_;
  const std::string locale_;
  const ZoneRules& rules_;
  os_unfair_lock lock_;
  std::vector<std::unique_ptr<icu::SimpleDateFormat>> idle_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));
};

IcuFormat::IcuFormat(std::string_view pattern, const Locale& locale, const Calendar& calendar)
    : pool_(
          std::make_unique<Pool>(pattern, icuLocaleName(locale, calendar.identifier()), calendar.timeZone().rules())) {}

IcuFormat::~IcuFormat() = default;

std::string IcuFormat::string(std::int64_t milliseconds) const {
  return pool_->with([milliseconds](icu::SimpleDateFormat& formatter) {
    icu::UnicodeString text;
    UErrorCode status = U_ZERO_ERROR;
    formatter.format(static_cast<double>(milliseconds), text, nullptr, status);
    std::string result;
    if (U_SUCCESS(status)) text.toUTF8String(result);
    return result;
  });
}

std::optional<Date> IcuFormat::date(std::string_view text) const {
  constexpr std::size_t kMaxLength = 1 << 16;  // longer texts are not dates
  if (text.size() > kMaxLength) return std::nullopt;
  return pool_->with([text](icu::SimpleDateFormat& formatter) -> std::optional<Date> {
    const auto units = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    const std::unique_ptr<icu::Calendar> fields(formatter.getCalendar()->clone());
    fields->clear();
    icu::ParsePosition position;
    formatter.parse(units, *fields, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() == 0 || !isBlank(units, position.getIndex())) {
      return std::nullopt;
    }
    adoptOurRules(*fields);
    UErrorCode status = U_ZERO_ERROR;
    const UDate milliseconds = fields->getTime(status);
    const Date date = Date::fromTimeIntervalSince1970(milliseconds / 1000);
    if (U_FAILURE(status) || !(date >= kFirstCalendarDate && date <= kLastCalendarDate)) return std::nullopt;
    return date;
  });
}

}  // namespace platform
}  // namespace havrin
