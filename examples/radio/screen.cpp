// SPDX-License-Identifier: Apache-2.0
#include "screen.h"

#include <HavrinFoundation/platform/unicode/character_set.h>
#include <HavrinFoundation/platform/unicode/unicode.h>
#include <HavrinFoundation/runtime/clamp.h>
#include <HavrinFoundation/text/string_helpers.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cwchar>

namespace radio {

namespace {

std::size_t columnsOf(char32_t scalar) {
  return static_cast<std::size_t>(std::max(0, wcwidth(static_cast<wchar_t>(scalar))));
}

// Stations are named by files: what would steer the terminal is made visible.
std::string withoutControls(std::string_view text) {
  static const havrin::CharacterSet kControls = [] {
    havrin::CharacterSet controls;
    controls.insert(havrin::ClosedRange<char32_t>{0, 0x1F});
    controls.insert(havrin::ClosedRange<char32_t>{0x7F, 0x9F});
    return controls;
  }();
  if (!havrin::containsAnyCharacters(text, kControls)) return std::string(text);
  std::string visible;
  for (std::size_t i = 0; i < text.size();) {
    const havrin::Scalar scalar = havrin::scalarAt(text, i);
    visible += kControls.contains(scalar.value) ? "\uFFFD" : text.substr(i, scalar.length);
    i += scalar.length;
  }
  return visible;
}

int byteOf(double component) { return static_cast<int>(havrin::clamp(component, {0.0, 1.0}) * 255.0); }

// The nearest level of the six that each component has in the cube of the 256 colours.
int levelOf(int byte) {
  constexpr int kLevels[] = {0, 95, 135, 175, 215, 255};
  const auto* const nearest =
      std::ranges::min_element(kLevels, {}, [byte](int level) { return std::abs(level - byte); });
  return static_cast<int>(nearest - kLevels);
}

// Relative luminance. Source: WCAG 2.1.
double luminance(const havrin::RGBA& colour) {
  const auto linear = [](double c) {
    c = havrin::clamp(c, {0.0, 1.0});
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.red) + 0.7152 * linear(colour.green) + 0.0722 * linear(colour.blue);
}

}  // namespace

std::size_t columns(std::string_view text) {
  std::size_t total = 0;
  for (std::size_t i = 0; i < text.size();) {
    const havrin::Scalar scalar = havrin::scalarAt(text, i);
    total += columnsOf(scalar.value);
    i += scalar.length;
  }
  return total;
}

std::string fitted(std::string_view given, std::size_t width, bool toTheRight) {
  const std::string text = withoutControls(given);
  const std::size_t whole = columns(text);
  if (whole <= width) {
    const std::string blanks(width - whole, ' ');
    return toTheRight ? blanks + text : text + blanks;
  }
  if (width == 0) return {};
  std::string cut;
  std::size_t used = 0;
  for (std::size_t i = 0; i < text.size();) {
    const havrin::Scalar scalar = havrin::scalarAt(text, i);
    if (used + columnsOf(scalar.value) > width - 1) break;
    used += columnsOf(scalar.value);
    cut.append(text, i, scalar.length);
    i += scalar.length;
  }
  return cut + "…" + std::string(width - 1 - used, ' ');
}

std::vector<std::string> linesOf(std::string_view given, std::size_t width) {
  const std::string visible = withoutControls(given);
  std::string_view text = visible;
  std::vector<std::string> lines;
  while (!text.empty()) {
    std::size_t end = 0;
    for (std::size_t used = 0; end < text.size();) {
      const havrin::Scalar scalar = havrin::scalarAt(text, end);
      used += columnsOf(scalar.value);
      if (used > width && end > 0) break;
      end += scalar.length;
    }
    // A word that does not fit goes to the next line whole, a longer one than a line is cut.
    const std::size_t blank = end < text.size() ? text.substr(0, end + 1).rfind(' ') : std::string_view::npos;
    const bool isBetweenWords = blank != std::string_view::npos && blank > 0;
    lines.emplace_back(text.substr(0, isBetweenWords ? blank : end));
    text.remove_prefix(isBetweenWords ? blank + 1 : end);
  }
  return lines;
}

std::string Paint::wrapped(const std::string& code, std::string_view text) const {
  return depth_ != Depth::plain ? "\x1b[" + code + "m" + std::string(text) + "\x1b[0m" : std::string(text);
}

std::string Paint::groundCode(const havrin::RGBA& colour) const {
  const int red = byteOf(colour.red);
  const int green = byteOf(colour.green);
  const int blue = byteOf(colour.blue);
  if (depth_ == Depth::palette) {
    return "48;5;" + std::to_string(16 + 36 * levelOf(red) + 6 * levelOf(green) + levelOf(blue));
  }
  return "48;2;" + std::to_string(red) + ";" + std::to_string(green) + ";" + std::to_string(blue);
}

std::string Paint::swatch(std::string_view text, const havrin::UIColor& ground) const {
  const auto colour = ground.getRedGreenBlueAlpha();
  if (!colour || depth_ < Depth::palette) return std::string(text);
  // The contrast ratios with white and with black are equal at this luminance.
  constexpr double kBothReadAlike = 0.1791;
  const char* ink = luminance(*colour) > kBothReadAlike ? ";38;5;16" : ";38;5;231";
  return wrapped(groundCode(*colour) + ink, text);
}

}  // namespace radio
