// Text on a terminal: columns, colours, frames drawn in place.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <HavrinFoundation/platform/interface/ui_color.h>

namespace radio {

/// How many terminal columns a text takes; characters of two columns and marks of none are counted as such.
std::size_t columns(std::string_view text);

/// The text in exactly `width` columns: cut with "…" when it is longer, filled with blanks when it is shorter.
/// Control characters show as U+FFFD, here and below.
std::string fitted(std::string_view text, std::size_t width, bool toTheRight = false);

/// The whole text over as many lines of at most `width` columns as it takes, between words where it can; none for no text.
std::vector<std::string> linesOf(std::string_view text, std::size_t width);

/// Colours and emphasis, or plain text where they are off.
class Paint {
 public:
  explicit Paint(bool on) : on_(on) {}

  [[nodiscard]] bool isOn() const { return on_; }
  [[nodiscard]] std::string bold(std::string_view text) const { return wrapped("1", text); }
  [[nodiscard]] std::string faint(std::string_view text) const { return wrapped("2", text); }
  /// In true colour: the text's, and the ground behind it.
  [[nodiscard]] std::string inked(std::string_view text, const havrin::UIColor& ink) const;
  /// On a ground of that colour, in black or white, whichever is read more easily on it.
  [[nodiscard]] std::string swatch(std::string_view text, const havrin::UIColor& ground) const;

 private:
  [[nodiscard]] std::string wrapped(const std::string& code, std::string_view text) const;

  bool on_;
};

/// The terminal while the board runs on it: keys one by one, frames in place; as it was again when this ends.
class Terminal {
 public:
  Terminal();
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// True when the output is a terminal that follows control sequences, as a "dumb" one does not.
  static bool takesControls();
  /// True when both input and output are such a terminal.
  static bool isPresent();
  struct Size {
    std::size_t width;
    std::size_t height;
  };
  /// The size now; 100 by 30 where there is no terminal.
  static Size size();

  void draw(const std::vector<std::string>& lines) const;
  /// The signal that has asked the program to end, 0 for none. It does not end it by itself, so that state can be saved.
  static int endedBy();

  /// The bytes that have been typed; empty when none have.
  [[nodiscard]] std::string typed() const;
};

}  // namespace radio
