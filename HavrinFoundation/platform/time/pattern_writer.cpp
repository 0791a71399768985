// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/pattern_writer.h>

#include <HavrinFoundation/platform/base/ascii.h>
#include <HavrinFoundation/platform/time/civil.h>
#include <HavrinFoundation/platform/time/icu_format.h>

#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/numsys.h>
#include <unicode/tzfmt.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

using Field = PatternWriter::Field;
using Part = PatternWriter::Part;

/// Digits of the furthest year that a calendar reaches.
constexpr int kYearDigits = 7;
/// What a copy of fixed size may read and write behind a text.
constexpr std::size_t kRoom = 16;
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

Part literal(std::string text) { return {.field = Field::literal, .texts = {std::move(text)}}; }

std::optional<Part> names(Field field, std::vector<std::string> texts) {
  return Part{.field = field, .texts = std::move(texts)};
}

/// Fields that are always written in digits.
constexpr struct {
  char letter;
  Field field;
} kNumbers[] = {{'d', Field::day},           {'H', Field::hourFrom0To23}, {'k', Field::hourFrom1To24},
                {'K', Field::hourFrom0To11}, {'h', Field::hourFrom1To12}, {'m', Field::minute},
                {'s', Field::second}};

/// The part of a pattern that `letters` times `letter` mean; none when it is left to ICU.
std::optional<Part> fieldPart(char letter, int letters, Words& words, const Calendar& calendar) {
  if (letters > kMaxWidth) return std::nullopt;
  for (const auto& number : kNumbers) {
    if (number.letter == letter) return Part{.field = number.field, .width = letters};
  }
  if (letter == 'y') return Part{.field = letters == 2 ? Field::yearOfCentury : Field::year, .width = letters};
  if (letter == 'M' || letter == 'L') {
    if (letters < 3) return Part{.field = Field::month, .width = letters};
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
    return Part{.field = kParts[letters - 1], .width = letters};
  }
  if (letter == 'z' && letters <= 4 && calendar.timeZone() == TimeZone::gmt()) {
    const std::optional<std::string> name = words.gmt(letters == 4);
    return name ? std::optional(literal(*name)) : std::nullopt;
  }
  return std::nullopt;
}

/// The text that the apostrophe at `position` begins: one apostrophe for two of them, else the text between it and the
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

/// The number of every field of a reading.
std::array<int, PatternWriter::kFields> valuesOf(std::int64_t local, int millisecond) {
  const std::int64_t dayNumber = floorDivide(local, kSecondsPerDay);
  const CivilDay civil = civilDayOf(dayNumber);
  const int time = static_cast<int>(local - dayNumber * kSecondsPerDay);
  const int hour = time / 3600;
  const int halfHour = hour < 12 ? hour : hour - 12;
  const int year = static_cast<int>(civil.year > 0 ? civil.year : 1 - civil.year);  // before Christ: backwards
  return {0,
          year,
          year % 100,
          civil.month,
          civil.day,
          weekdayOf(dayNumber) + 1,
          hour / 12,
          hour,
          hour == 0 ? 24 : hour,
          halfHour,
          halfHour == 0 ? 12 : halfHour,
          time / 60 % 60,
          time % 60,
          millisecond / 100,
          millisecond / 10,
          millisecond};
}

/// "00" to "99".
constexpr std::array<char, 200> kTwoDigits = [] {
  std::array<char, 200> digits{};
  for (std::size_t i = 0; i < 100; ++i) {
    digits[2 * i] = static_cast<char>('0' + i / 10);
    digits[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return digits;
}();

char* writeTwoDigits(char* out, unsigned value) {
  std::memcpy(out, kTwoDigits.data() + 2 * value, 2);
  return out + 2;
}

char* writeNumber(char* out, unsigned value, int width) {
  if (width == 2 && value < 100) return writeTwoDigits(out, value);
  if (width == 4 && value < 10'000) return writeTwoDigits(writeTwoDigits(out, value / 100), value % 100);
  char digits[20];
  int count = 0;
  do digits[count++] = static_cast<char>('0' + value % 10);
  while ((value /= 10) != 0);
  for (int i = count; i < width; ++i) *out++ = '0';
  while (count > 0) *out++ = digits[--count];
  return out;
}

}  // namespace

std::optional<PatternWriter> PatternWriter::compile(std::string_view givenPattern, const Locale& locale,
                                                    const Calendar& calendar) {
  if (calendar.identifier() != CalendarIdentifier::gregorian) return std::nullopt;
  Words words(locale, calendar);
  if (!words.hasPlainDigits()) return std::nullopt;
  const std::string pattern = utf8(icu::UnicodeString::fromUTF8(givenPattern));  // ill-formed parts become U+FFFD
  std::vector<Part> parts;
  std::string pending;  // literal text that the next part has to follow
  for (std::size_t i = 0; i < pattern.size();) {
    if (pattern[i] == '\'') {
      const std::optional<std::string> text = quoted(pattern, i);
      if (!text) return std::nullopt;
      pending += *text;
    } else if (!isAsciiLetter(pattern[i])) {
      pending += pattern[i++];
    } else {
      const std::size_t end = std::min(pattern.find_first_not_of(pattern[i], i), pattern.size());
      std::optional<Part> part =
          fieldPart(pattern[i], static_cast<int>(std::min<std::size_t>(end - i, kMaxWidth + 1)), words, calendar);
      if (!part) return std::nullopt;
      i = end;
      if (part->field == Field::literal) {
        pending += part->texts.front();
        continue;
      }
      if (!pending.empty()) parts.push_back(literal(std::exchange(pending, {})));
      parts.push_back(*std::move(part));
    }
  }
  if (!pending.empty()) parts.push_back(literal(std::move(pending)));
  if (words.failed()) return std::nullopt;
  return PatternWriter(parts);
}

PatternWriter::PatternWriter(const std::vector<Part>& parts) : capacity_(kRoom) {
  for (const Part& part : parts) {
    if (part.field == Field::literal) {
      (steps_.empty() ? front_ : steps_.back().behind) = piece(part.texts.front());
      capacity_ += part.texts.front().size();
      continue;
    }
    const bool isName = !part.texts.empty();
    steps_.push_back(
        {part.field, isName, static_cast<std::uint8_t>(part.width), static_cast<std::uint32_t>(names_.size())});
    std::size_t longest = isName ? 0 : static_cast<std::size_t>(std::max(part.width, kYearDigits));
    for (const std::string& text : part.texts) {
      names_.push_back(piece(text));
      longest = std::max(longest, text.size());
    }
    capacity_ += longest;
  }
  texts_.append(kRoom, '\0');
}

PatternWriter::Piece PatternWriter::piece(const std::string& text) {
  const Piece result{static_cast<std::uint32_t>(texts_.size()), static_cast<std::uint32_t>(text.size())};
  texts_ += text;
  return result;
}

/// Nearly every text is short: a copy of fixed size, which may write into the room behind, is a single instruction.
inline char* PatternWriter::copy(char* out, Piece piece) const {
  const char* text = texts_.data() + piece.start;
  std::memcpy(out, text, kRoom);
  if (piece.size > kRoom) std::memcpy(out + kRoom, text + kRoom, piece.size - kRoom);
  return out + piece.size;
}

char* PatternWriter::write(char* out, const std::array<int, kFields>& values) const {
  out = copy(out, front_);
  for (const Step& step : steps_) {
    const unsigned value = static_cast<unsigned>(values[static_cast<std::size_t>(step.field)]);
    out = step.isName ? copy(out, names_[step.names + value]) : writeNumber(out, value, step.width);
    out = copy(out, step.behind);
  }
  return out;
}

std::string PatternWriter::string(std::int64_t local, int millisecond) const {
  const auto values = valuesOf(local, millisecond);
  char buffer[256];
  if (capacity_ <= sizeof buffer) return {buffer, write(buffer, values)};
  std::string text(capacity_, '\0');
  text.resize(static_cast<std::size_t>(write(text.data(), values) - text.data()));
  return text;
}

}  // namespace platform
}  // namespace havrin
