// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/printing.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

namespace havrin::detail {

namespace {

// The shortest text that reads back as the same number.
std::string shortest(double number) {
  std::array<char, 32> text;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

}  // namespace

std::string printed(const Calendar& calendar) {
  return std::string(nameOf(calendar.identifier())) + " in " + std::string(calendar.timeZone().name());
}

std::string printed(const CGColor& color) {
  std::string text(color.colorSpace() ? color.colorSpace()->name : "no colour space");
  const char* separator = "(";
  for (const double component : color.components()) text += std::exchange(separator, ", ") + shortest(component);
  return color.components().empty() ? text : text + ")";
}

std::string printed(const DateComponents& components) {
  const std::pair<const char*, std::optional<std::int64_t>> kFields[] = {
      {"era ", components.era},       {"year ", components.year},       {"month ", components.month},
      {"day ", components.day},       {"hour ", components.hour},       {"minute ", components.minute},
      {"second ", components.second}, {"weekday ", components.weekday},
  };
  std::string text = "{";
  const char* separator = "";
  for (const auto& [name, value] : kFields) {
    if (value) text.append(std::exchange(separator, ", ")).append(name).append(std::to_string(*value));
  }
  return text + "}";
}

std::string printed(const NSRange& range) {
  return "{" + std::to_string(range.location) + ", " + std::to_string(range.length) + "}";
}

}  // namespace havrin::detail
