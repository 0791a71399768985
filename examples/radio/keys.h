// SPDX-License-Identifier: Apache-2.0
// What is typed, as keys.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace radio {

enum class Key { text, enter, escape, erase, tab, up, down, pageUp, pageDown, home, end, endOfInput, unknown };

struct Keystroke {
  Key key;
  std::string text;  // of Key::text: one character
};

/// Reads bytes as they come from a terminal; a key may be spread over several reads.
class KeyReader {
 public:
  /// The keys that are complete with these bytes.
  std::vector<Keystroke> read(std::string_view bytes);
  /// True when a key has begun: more of it follows at once, or it was the Escape key.
  [[nodiscard]] bool isWaiting() const { return !rest_.empty(); }
  /// The keys that are left when nothing more has followed.
  std::vector<Keystroke> finish();

 private:
  std::string rest_;
};

}  // namespace radio
