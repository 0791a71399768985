// SPDX-License-Identifier: Apache-2.0
// A text as a template argument: selectors and keys are string literals in the source.
//
//   Text("title").view()                    "title"
//   setterSelector<"title">.view()          "setTitle:"
//   selectorArgumentCount("insert:at:")     2
#pragma once

#include <cstddef>
#include <string_view>

namespace havrin {

namespace detail {
constexpr void copyUnits(const char* from, std::size_t count, char* to) {  // <algorithm> costs more than all else here
  for (std::size_t i = 0; i < count; ++i) to[i] = from[i];
}
}  // namespace detail

inline namespace platform {

template <std::size_t Size>
struct Text {
  char text[Size]{};

  constexpr Text() = default;
  constexpr Text(const char (&literal)[Size]) { detail::copyUnits(literal, Size, text); }
  [[nodiscard]] constexpr std::string_view view() const { return {text, Size - 1}; }
};

/// The number of colons, which is the number of a selector's arguments.
[[nodiscard]] constexpr std::size_t selectorArgumentCount(std::string_view selector) {
  std::size_t colons = 0;
  for (const char unit : selector) colons += unit == ':' ? 1 : 0;
  return colons;
}

/// True for "set<Key>:" with one argument and a key that starts with anything but a lower-case letter.
[[nodiscard]] constexpr bool isSetterSelector(std::string_view selector) {
  return selector.size() > 4 && selector.substr(0, 3) == "set" && selector.back() == ':' &&
         selectorArgumentCount(selector) == 1 && !(selector[3] >= 'a' && selector[3] <= 'z');
}

}  // namespace platform

namespace detail {
template <std::size_t Size>
constexpr auto setterSelectorOf(const Text<Size>& key) {
  Text<Size + 4> selector;
  copyUnits("set", 3, selector.text);
  copyUnits(key.text, Size - 1, selector.text + 3);
  if (selector.text[3] >= 'a' && selector.text[3] <= 'z') selector.text[3] = static_cast<char>(selector.text[3] - 32);
  selector.text[Size + 2] = ':';
  return selector;
}
}  // namespace detail

inline namespace platform {

/// The setter's selector for a key: "title" gives "setTitle:".
template <Text Key>
inline constexpr auto setterSelector = detail::setterSelectorOf(Key);

}  // namespace platform
}  // namespace havrin
