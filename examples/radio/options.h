// SPDX-License-Identifier: Apache-2.0
// What the command line says.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace radio {

enum class Colours { never, always, automatic };

struct Options {
  std::vector<std::string> stationsFiles;  // "-" is standard input; the shipped one when there are none
  std::optional<std::string> link;         // shown with its campaign parameters, instead of the board
  std::optional<std::string> keys;         // typed by a script instead of the keyboard
  std::optional<std::string> stateFile;    // the default place when it is not said
  bool keepsNoState = false;
  bool once = false;
  bool showsVersion = false;
  bool verbose = false;
  std::optional<double> seconds;  // until it is ended, when it is not said
  Colours colours = Colours::automatic;
};

/// What to print, and the exit status, when there is nothing to run.
struct Answer {
  std::string text;
  int status;
};

/// The options of a command line, or what to answer to one that asks for help or cannot be read.
std::variant<Options, Answer> readOptions(int count, const char* const* words);

}  // namespace radio
