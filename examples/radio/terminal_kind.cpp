// SPDX-License-Identifier: Apache-2.0
#include "terminal_kind.h"

#include <HavrinFoundation/platform/application/process_info.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <algorithm>
#include <string_view>

namespace radio {

namespace {

std::string variable(const char* name) {
  return havrin::NSProcessInfo::processInfo()->environmentValue(name).value_or("");
}

}  // namespace

Depth terminalDepth() {
  if (!variable("NO_COLOR").empty()) return Depth::plain;
  const std::string colours = variable("COLORTERM");
  const std::string kind = variable("TERM");
  if (colours == "truecolor" || colours == "24bit" || kind.ends_with("-direct")) return Depth::trueColour;
  return kind.find("256color") != std::string::npos ? Depth::palette : Depth::emphasis;
}

bool terminalShowsUTF8() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    std::string locale = variable(name);
    if (locale.empty()) continue;
    std::erase(locale, '-');
    std::ranges::transform(locale, locale.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
    return locale.find("utf8") != std::string::npos;
  }
  return true;
}

std::string inASCII(const std::string& text) {
  std::string ascii;
  for (std::size_t i = 0; i < text.size();) {
    const havrin::Scalar scalar = havrin::scalarAt(text, i);
    const std::string_view character(text.data() + i, scalar.length);
    i += scalar.length;
    if (scalar.value < 0x80) {
      ascii += character;
    } else if (character == "▸") {
      ascii += '>';
    } else if (character == "★") {
      ascii += '*';
    } else if (character == "…") {
      ascii += '.';
    } else {
      ascii.append(columns(character), '?');
    }
  }
  return ascii;
}

}  // namespace radio
