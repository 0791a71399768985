// SPDX-License-Identifier: Apache-2.0
// What the terminal can show, as the environment says.
#pragma once

#include "screen.h"

#include <string>

namespace radio {

/// The colours of the terminal: all where COLORTERM is "truecolor" or "24bit", or TERM ends in "-direct"; 256 where TERM
/// has "256color"; emphasis alone otherwise; plain text where NO_COLOR is set.
Depth terminalDepth();

/// Whether the terminal shows UTF-8: the first of LC_ALL, LC_CTYPE and LANG that is set names it, or none is.
bool terminalShowsUTF8();

/// The text without characters beyond ASCII: the board's own marks become similar ones, others "?", as wide as they are.
std::string inASCII(const std::string& text);

}  // namespace radio
