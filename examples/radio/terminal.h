// SPDX-License-Identifier: Apache-2.0
// The terminal while the board runs on it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace radio {

/// Keys come one by one, frames are drawn in place; the terminal is as it was again when this ends.
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
    bool operator==(const Size&) const = default;
  };
  /// The size now; 100 by 30 where there is no terminal.
  static Size size();

  /// True when the terminal has another size than when it was last drawn on, or shows something else.
  [[nodiscard]] bool isStale() const { return drawnSize_ != size(); }

  /// Shows the lines; only those are written that are not there already.
  void draw(const std::vector<std::string>& lines);

  /// A descriptor that is readable after a signal: to end, to be suspended, a new size.
  static int signalDescriptor();
  /// Takes the signals that have come. Gives the terminal back and waits where the board is to be suspended.
  void takeSignals();
  /// The signal that has asked the program to end, 0 for none. It does not end it by itself, so that state can be saved.
  static int endedBy();

  /// The bytes that have been typed; empty when none have.
  [[nodiscard]] std::string typed() const;

 private:
  const bool showsUTF8_;
  std::vector<std::string> drawn_;
  Size drawnSize_{0, 0};
};

}  // namespace radio
