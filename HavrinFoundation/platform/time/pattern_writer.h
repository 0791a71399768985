// SPDX-License-Identifier: Apache-2.0
// The usual part of the language of date patterns, compiled: Gregorian dates and clock times in digits and names.
// Internal.
//
//   PatternWriter::compile("HH':'mm", Locale::posix(), gmt)->string(52'200, 0)     "14:30"
//   PatternWriter::compile("QQQ", Locale::posix(), gmt)                            empty: quarters are ICU's
#pragma once

#include <HavrinFoundation/platform/time/calendar.h>
#include <HavrinFoundation/platform/time/locale.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace havrin {
inline namespace platform {

/// A list of steps, each of which appends a piece of text.
class PatternWriter {
 public:
  /// The steps for `pattern`.
  /// Empty when: the pattern or what it needs from the locale goes beyond the usual part; ICU then writes the text.
  [[nodiscard]] static std::optional<PatternWriter> compile(std::string_view pattern, const Locale& locale,
                                                            const Calendar& calendar);

  /// The text of the wall clock reading `local`, in seconds since 1970 of that clock, and its millisecond.
  [[nodiscard]] std::string string(std::int64_t local, int millisecond) const;

  enum class Field : std::uint8_t {
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
  static constexpr std::size_t kFields = static_cast<std::size_t>(Field::thousandths) + 1;

  /// What the compiler makes of a part of a pattern: a field in `width` digits, or in the text of its number where
  /// there are texts; the only text of a literal has number 0.
  struct Part {
    Field field = Field::literal;
    int width = 0;
    std::vector<std::string> texts = {};
  };

 private:
  /// The place of a text in `texts_`.
  struct Piece {
    std::uint32_t start = 0;
    std::uint32_t size = 0;
  };
  /// A field as it is run, with the literal text that follows it.
  struct Step {
    Field field;
    bool isName;
    std::uint8_t width;
    std::uint32_t names;  // how many pieces precede its own
    Piece behind = {};
  };

  explicit PatternWriter(const std::vector<Part>& parts);

  Piece piece(const std::string& text);
  [[nodiscard]] char* copy(char* out, Piece piece) const;
  [[nodiscard]] char* write(char* out, const std::array<int, kFields>& values) const;

  Piece front_;  // the literal text before the first field
  std::vector<Step> steps_;
  std::vector<Piece> names_;
  std::string texts_;         // all of them, and some room behind the last
  std::size_t capacity_ = 0;  // for the longest text, and some room behind it
};

}  // namespace platform
}  // namespace havrin
