// SPDX-License-Identifier: Apache-2.0
// The line that letters go to: a search, a station's number, a colour code.
#pragma once

#include <string>
#include <string_view>

namespace radio {

class Prompt {
 public:
  enum class Kind { none, search, number, colour };

  [[nodiscard]] Kind kind() const { return kind_; }
  [[nodiscard]] bool isOpen() const { return kind_ != Kind::none; }
  [[nodiscard]] const std::string& text() const { return text_; }
  /// "search", "station", "colour".
  [[nodiscard]] std::string_view label() const;
  /// What may be typed, for people.
  [[nodiscard]] std::string_view allowed() const;

  void open(Kind kind, std::string text);
  /// Result: what was typed until now.
  std::string close();
  /// Appends a character. Result: false when the prompt takes no such one.
  bool type(std::string_view character);
  /// Takes the last character away.
  void erase();

 private:
  Kind kind_ = Kind::none;
  std::string text_;
};

/// True for letters and digits of any script, and blanks.
bool isSearchText(std::string_view text);

}  // namespace radio
