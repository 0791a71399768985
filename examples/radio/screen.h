// SPDX-License-Identifier: Apache-2.0
// Text on a terminal: columns and colours.
#pragma once

#include <HavrinFoundation/platform/interface/ui_color.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace radio {

/// How many terminal columns a text takes; characters of two columns and marks of none are counted as such.
std::size_t columns(std::string_view text);

/// The text in exactly `width` columns: cut with "…" when it is longer, filled with blanks when it is shorter.
/// Control characters show as U+FFFD, here and below.
std::string fitted(std::string_view text, std::size_t width, bool toTheRight = false);

/// The whole text over as many lines of at most `width` columns as it takes, between words where it can; none for no text.
std::vector<std::string> linesOf(std::string_view text, std::size_t width);

/// How much of colours and emphasis is used: no control sequence; bold, faint and the like; the 256 colours that
/// terminals have in common; 24 bits.
enum class Depth { plain, emphasis, palette, trueColour };

class Paint {
 public:
  explicit Paint(Depth depth) : depth_(depth) {}

  [[nodiscard]] std::string bold(std::string_view text) const { return wrapped("1", text); }
  [[nodiscard]] std::string underlined(std::string_view text) const { return wrapped("1;4", text); }
  [[nodiscard]] std::string marked(std::string_view text) const { return wrapped("1;7", text); }
  [[nodiscard]] std::string faint(std::string_view text) const { return wrapped("2", text); }
  /// On a ground of that colour, in black or white, whichever is read more easily on it.
  [[nodiscard]] std::string swatch(std::string_view text, const havrin::UIColor& ground) const;

 private:
  [[nodiscard]] std::string wrapped(const std::string& code, std::string_view text) const;

  [[nodiscard]] std::string groundCode(const havrin::RGBA& colour) const;

  Depth depth_;
};

}  // namespace radio
