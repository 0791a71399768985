// The usual part of the language of date patterns, compiled: Gregorian dates and clock times in digits and names.
// Internal.
//
//   PatternWriter::compile("HH':'mm", Locale::posix(), gmt)->string(52'200, 0)     "14:30"
//   PatternWriter::compile("QQQ", Locale::posix(), gmt)                            empty: quarters are ICU's
#pragma once

#include <HavrinFoundation/platform/time/calendar.h>
#include <HavrinFoundation/platform/time/locale.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace havrin::inline platform {

/// A list of steps, each of which appends a piece of text.
class PatternWriter {
 public:
  /// The steps for `pattern`.
  /// Empty when: the pattern or what it needs from the locale goes beyond the usual part; ICU then writes the text.
  [[nodiscard]] static std::optional<PatternWriter> compile(std::string_view pattern, const Locale& locale,
                                                            const Calendar& calendar);

  /// The text of the wall clock reading `local`, in seconds since 1970 of that clock, and its millisecond.
  [[nodiscard]] std::string string(std::int64_t local, int millisecond) const;

  enum class Field {
    literal,
    year,
    yearOfCentury,
    month,
    day,
    weekday,
    half,
    hourFrom0To23,
    hourFrom1To24,
    hourFrom0To11,
    hourFrom1To12,
    minute,
    second,
    tenths,
    hundredths,
    thousandths,
  };

  /// A field's value in digits, or the text of that number where there are texts; a literal's only text is number 0.
  struct Step {
    Field field = Field::literal;
    int width = 0;
    std::vector<std::string> texts = {};
  };

 private:
  explicit PatternWriter(std::vector<Step> steps);

  std::vector<Step> steps_;
  std::size_t capacity_ = 0;  // no text is longer
};

}  // namespace havrin::inline platform
