// A text as a template argument: selectors and keys in the source are spelt as string literals.
//
//   send<"select:">(stations, isOnAir);
//   setterSelector<"title">.view()          "setTitle:"
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace havrin {
inline namespace platform {

template <std::size_t Size>
struct Text {
  char text[Size]{};

  constexpr Text() = default;
  constexpr Text(const char (&literal)[Size]) { std::copy_n(literal, Size, text); }
  [[nodiscard]] constexpr std::string_view view() const { return {text, Size - 1}; }
};

/// The number of colons, which is the number of a selector's arguments.
[[nodiscard]] constexpr std::size_t selectorArgumentCount(std::string_view selector) {
  return static_cast<std::size_t>(std::count(selector.begin(), selector.end(), ':'));
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
  std::copy_n("set", 3, selector.text);
  std::copy_n(key.text, Size - 1, selector.text + 3);
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
