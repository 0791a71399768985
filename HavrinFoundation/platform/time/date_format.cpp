// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/date_format.h>

#include <HavrinFoundation/platform/time/icu_format.h>
#include <HavrinFoundation/platform/time/instant.h>
#include <HavrinFoundation/platform/time/pattern_writer.h>
#include <HavrinFoundation/platform/time/zone_rules.h>

namespace havrin {
inline namespace platform {
class DateFormat::Compiled {
 public:
  Compiled(std::string_view pattern, const Locale& locale, const Calendar& calendar)
      : pattern_(pattern),
        locale_(locale),
        calendar_(calendar),
        writer_(PatternWriter::compile(pattern, locale, calendar)),
        icu_(pattern, locale, calendar) {}

  std::string string(Date date) const {
    const Instant instant = instantOf(date);
    // To the nearest microsecond first: what a double adds to a decimal fraction is noise.
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): a fraction is never negative
    const int microseconds = static_cast<int>(instant.fraction * 1e6 + 0.5);
    const bool isNextSecond = microseconds == 1'000'000;
    const std::int64_t second = instant.seconds + isNextSecond;
    const int millisecond = isNextSecond ? 0 : microseconds / 1000;
    if (!writer_) return icu_.string(second * 1000 + millisecond);
    return writer_->string(second + calendar_.timeZone().rules().offsetAt(second), millisecond);
  }

  const std::string pattern_;
  const Locale locale_;
  const Calendar calendar_;
  const std::optional<PatternWriter> writer_;
  const IcuFormat icu_;
};

DateFormat::DateFormat(std::string_view pattern, const Locale& locale, const Calendar& calendar)
    : compiled_(std::make_shared<const Compiled>(pattern, locale, calendar)) {}

const std::string& DateFormat::pattern() const { return compiled_->pattern_; }

const Locale& DateFormat::locale() const { return compiled_->locale_; }

const Calendar& DateFormat::calendar() const { return compiled_->calendar_; }

std::string DateFormat::string(Date date) const { return isNotANumber(date) ? std::string() : compiled_->string(date); }

std::optional<Date> DateFormat::date(std::string_view text) const { return compiled_->icu_.date(text); }

std::string utcText(Date date) {
  static const auto* const kFormat = new DateFormat("yyyy-MM-dd HH:mm:ss '+0000'", Locale::posix(),
                                                    Calendar(CalendarIdentifier::gregorian, TimeZone::gmt()));
  return kFormat->string(date);
}

}  // namespace platform
}  // namespace havrin
