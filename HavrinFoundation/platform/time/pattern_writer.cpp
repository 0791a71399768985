#include <HavrinFoundation/platform/time/pattern_writer.h>

#include <HavrinFoundation/platform/time/civil.h>
#include <HavrinFoundation/platform/time/icu_format.h>

#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/numsys.h>
#include <unicode/tzfmt.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace havrin::inline platform {
namespace {

using Field = PatternWriter::Field;
using Step = PatternWriter::Step;

/// Digits of the furthest year that a calendar reaches.
constexpr int kYearDigits = 7;
/// Patterns with longer fields are left to ICU.
constexpr int kMaxWidth = 8;

std::string utf8(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

/// Looks up the words of one locale.
class Words {
 public:
  Words(const Locale& locale, const Calendar& calendar)
      : locale_(icuLocaleName(locale, calendar.identifier()).c_str()), symbols_(locale_, status_) {}

  /// Whether the locale writes ASCII digits.
  bool hasPlainDigits() {
    const std::unique_ptr<icu::NumberingSystem> digits(icu::NumberingSystem::createInstance(locale_, status_));
    return U_SUCCESS(status_) && std::strcmp(digits->getName(), "latn") == 0;
  }

  /// January first, behind an empty entry.
  std::vector<std::string> months(bool alone, icu::DateFormatSymbols::DtWidthType width) {
    std::int32_t count = 0;
    const auto context = alone ? icu::DateFormatSymbols::STANDALONE : icu::DateFormatSymbols::FORMAT;
    const icu::UnicodeString* months = symbols_.getMonths(count, context, width);
    std::vector<std::string> result = copied(months, count);
    result.insert(result.begin(), std::string());
    return result;
  }

  /// Sunday first, behind an empty entry.
  std::vector<std::string> weekdays(icu::DateFormatSymbols::DtWidthType width) {
    std::int32_t count = 0;
    const icu::UnicodeString* weekdays = symbols_.getWeekdays(count, icu::DateFormatSymbols::FORMAT, width);
    return copied(weekdays, count);
  }

  std::vector<std::string> halves() {
    std::int32_t count = 0;
    const icu::UnicodeString* halves = symbols_.getAmPmStrings(count);
    return copied(halves, count);
  }

  /// The short or long name of GMT, if it has been the same at all times: ICU has names from 1970 onwards.
  std::optional<std::string> gmt(bool isLong) {
    constexpr UDate kLongAgo = -1e14;
    const std::unique_ptr<icu::TimeZoneFormat> names(icu::TimeZoneFormat::createInstance(locale_, status_));
    if (U_FAILURE(status_)) return std::nullopt;
    const UTimeZoneFormatStyle style = isLong ? UTZFMT_STYLE_SPECIFIC_LONG : UTZFMT_STYLE_SPECIFIC_SHORT;
    icu::UnicodeString now;
    icu::UnicodeString then;
    names->format(style, *icu::TimeZone::getGMT(), 0, now);
    names->format(style, *icu::TimeZone::getGMT(), kLongAgo, then);
    if (now != then) return std::nullopt;
    return utf8(now);
  }

  bool failed() const { return U_FAILURE(status_); }

 private:
  static std::vector<std::string> copied(const icu::UnicodeString* texts, std::int32_t count) {
    std::vector<std::string> result;
    std::transform(texts, texts + count, std::back_inserter(result), utf8);
    return result;
  }

  UErrorCode status_ = U_ZERO_ERROR;
  const icu::Locale locale_;
  const icu::DateFormatSymbols symbols_;
};

/// The name forms of months and weekdays by the number of letters: 3, 4, 5.
std::optional<icu::DateFormatSymbols::DtWidthType> nameWidth(int letters) {
  switch (letters) {
    case 3:
      return icu::DateFormatSymbols::ABBREVIATED;
    case 4:
      return icu::DateFormatSymbols::WIDE;
    case 5:
      return icu::DateFormatSymbols::NARROW;
    default:
      return std::nullopt;
  }
}

Step literal(std::string text) { return {.field = Field::literal, .texts = {std::move(text)}}; }

std::optional<Step> names(Field field, std::vector<std::string> texts) {
  return Step{.field = field, .texts = std::move(texts)};
}

/// Fields that are always written in digits.
constexpr struct {
  char letter;
  Field field;
} kNumbers[] = {{'d', Field::day},           {'H', Field::hourFrom0To23}, {'k', Field::hourFrom1To24},
                {'K', Field::hourFrom0To11}, {'h', Field::hourFrom1To12}, {'m', Field::minute},
                {'s', Field::second}};

/// The step for `letters` times `letter`; none when it is ICU's.
std::optional<Step> fieldStep(char letter, int letters, Words& words, const Calendar& calendar) {
  if (letters > kMaxWidth) return std::nullopt;
  for (const auto& number : kNumbers) {
    if (number.letter == letter) return Step{.field = number.field, .width = letters};
  }
  if (letter == 'y') return Step{.field = letters == 2 ? Field::yearOfCentury : Field::year, .width = letters};
  if (letter == 'M' || letter == 'L') {
    if (letters < 3) return Step{.field = Field::month, .width = letters};
    const auto width = nameWidth(letters);
    return width ? names(Field::month, words.months(letter == 'L', *width)) : std::nullopt;
  }
  if (letter == 'E') {
    const auto width = nameWidth(std::max(letters, 3));
    return width ? names(Field::weekday, words.weekdays(*width)) : std::nullopt;
  }
  if (letter == 'a' && letters <= 3) return names(Field::half, words.halves());
  if (letter == 'S' && letters <= 3) {
    constexpr Field kParts[] = {Field::tenths, Field::hundredths, Field::thousandths};
    return Step{.field = kParts[letters - 1], .width = letters};
  }
  if (letter == 'z' && letters <= 4 && calendar.timeZone() == TimeZone::gmt()) {
    const std::optional<std::string> name = words.gmt(letters == 4);
    return name ? std::optional(literal(*name)) : std::nullopt;
  }
  return std::nullopt;
}

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

/// The text that the apostrophe at `position` begins: one apostrophe for two of them, else what stands between it and the
/// next single one; moves `position` behind it. None where the text never ends.
std::optional<std::string> quoted(std::string_view pattern, std::size_t& position) {
  const auto isDouble = [pattern](std::size_t at) { return pattern.substr(at, 2) == "''"; };
  if (isDouble(position)) {
    position += 2;
    return "'";
  }
  std::string text;
  for (std::size_t i = position + 1; i < pattern.size(); ++i) {
    if (isDouble(i)) {
      text += pattern[i++];
    } else if (pattern[i] != '\'') {
      text += pattern[i];
    } else {
      position = i + 1;
      return text;
    }
  }
  return std::nullopt;
}

/// What a clock and a calendar on the wall show.
struct Reading {
  CivilDay civil;
  int weekday;  // 0 for Sunday
  int time;     // seconds since midnight
  int millisecond;
};

std::int64_t valueOf(Field field, const Reading& reading) {
  const int hour = reading.time / 3600;
  const std::int64_t year = reading.civil.year > 0 ? reading.civil.year : 1 - reading.civil.year;  // before Christ
  switch (field) {
    case Field::literal:
      return 0;
    case Field::year:
      return year;
    case Field::yearOfCentury:
      return year % 100;
    case Field::month:
      return reading.civil.month;
    case Field::day:
      return reading.civil.day;
    case Field::weekday:
      return reading.weekday + 1;
    case Field::half:
      return hour / 12;
    case Field::hourFrom0To23:
      return hour;
    case Field::hourFrom1To24:
      return hour == 0 ? 24 : hour;
    case Field::hourFrom0To11:
      return hour % 12;
    case Field::hourFrom1To12:
      return hour % 12 == 0 ? 12 : hour % 12;
    case Field::minute:
      return reading.time / 60 % 60;
    case Field::second:
      return reading.time % 60;
    case Field::tenths:
      return reading.millisecond / 100;
    case Field::hundredths:
      return reading.millisecond / 10;
    case Field::thousandths:
      return reading.millisecond;
  }
  return 0;
}

char* writeNumber(char* out, std::int64_t value, int width) {
  if (width == 2 && value < 100) {
    *out++ = static_cast<char>('0' + value / 10);
    *out++ = static_cast<char>('0' + value % 10);
    return out;
  }
  char digits[20];
  int count = 0;
  do digits[count++] = static_cast<char>('0' + value % 10);
  while ((value /= 10) != 0);
  for (int i = count; i < width; ++i) *out++ = '0';
  while (count > 0) *out++ = digits[--count];
  return out;
}

char* writeText(char* out, const std::string& text) {
  std::memcpy(out, text.data(), text.size());
  return out + text.size();
}

}  // namespace

std::optional<PatternWriter> PatternWriter::compile(std::string_view givenPattern, const Locale& locale,
                                                    const Calendar& calendar) {
  if (calendar.identifier() != CalendarIdentifier::gregorian) return std::nullopt;
  Words words(locale, calendar);
  if (!words.hasPlainDigits()) return std::nullopt;
  const std::string pattern = utf8(icu::UnicodeString::fromUTF8(givenPattern));  // ill-formed parts become U+FFFD
  std::vector<Step> steps;
  std::string pending;  // literal text that the next step has to follow
  for (std::size_t i = 0; i < pattern.size();) {
    if (pattern[i] == '\'') {
      const std::optional<std::string> text = quoted(pattern, i);
      if (!text) return std::nullopt;
      pending += *text;
    } else if (!isLetter(pattern[i])) {
      pending += pattern[i++];
    } else {
      const std::size_t end = std::min(pattern.find_first_not_of(pattern[i], i), pattern.size());
      std::optional<Step> step =
          fieldStep(pattern[i], static_cast<int>(std::min<std::size_t>(end - i, kMaxWidth + 1)), words, calendar);
      if (!step) return std::nullopt;
      i = end;
      if (step->field == Field::literal) {
        pending += step->texts.front();
        continue;
      }
      if (!pending.empty()) steps.push_back(literal(std::exchange(pending, {})));
      steps.push_back(*std::move(step));
    }
  }
  if (!pending.empty()) steps.push_back(literal(std::move(pending)));
  if (words.failed()) return std::nullopt;
  return PatternWriter(std::move(steps));
}

PatternWriter::PatternWriter(std::vector<Step> steps) : steps_(std::move(steps)) {
  for (const Step& step : steps_) {
    std::size_t longest = static_cast<std::size_t>(std::max(step.width, kYearDigits));
    for (const std::string& text : step.texts) longest = std::max(longest, text.size());
    capacity_ += longest;
  }
}

std::string PatternWriter::string(std::int64_t local, int millisecond) const {
  const std::int64_t dayNumber = floorDivide(local, kSecondsPerDay);
  const Reading reading{civilDayOf(dayNumber), weekdayOf(dayNumber),
                        static_cast<int>(local - dayNumber * kSecondsPerDay), millisecond};
  std::string text(capacity_, '\0');
  char* out = text.data();
  for (const Step& step : steps_) {
    const std::int64_t value = valueOf(step.field, reading);
    out = step.texts.empty() ? writeNumber(out, value, step.width)
                             : writeText(out, step.texts[static_cast<std::size_t>(value)]);
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
  return text;
}

}  // namespace havrin::inline platform
