// SPDX-License-Identifier: Apache-2.0
// The campaign parameters of a link: the six query keys that begin with "utm_", read and appended.
//
//   fromUrl<UTMParameters>(URL::fromString("https://h/p?utm_source=mail"))      source "mail", the others absent
//   fromUrl<UTMParameters>(URL::fromString("https://h/p?UTM_SOURCE=mail"))      empty: keys are lower case
//   adding(*URL::fromString("https://h/p?a=1#f"), UTMParameters{.source = "x y"})
//                                                                               https://h/p?a=1&utm_source=x%20y#f
//   adding(*URL::fromString("https://h/p"), UTMParameters{})                    https://h/p?
//
// There is no message form.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/net/url.h>

#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {

namespace detail {
// An optional text that a null pointer does not make: std::nullopt is the absent one.
struct OptionalText : std::optional<std::string> {
  using std::optional<std::string>::optional;
  using std::optional<std::string>::operator=;
  OptionalText() = default;
  OptionalText(std::nullptr_t) = delete;
  OptionalText& operator=(std::nullptr_t) = delete;
  [[nodiscard]] const std::optional<std::string>& optional() const { return *this; }

  friend bool operator==(const OptionalText& a, const OptionalText& b) { return a.optional() == b.optional(); }
  friend bool operator==(const OptionalText& a, const std::optional<std::string>& b) { return a.optional() == b; }
  friend bool operator==(const OptionalText& a, std::nullopt_t) { return !a.has_value(); }
  template <std::convertible_to<std::string_view> Text>
  friend bool operator==(const OptionalText& a, const Text& b) {
    return a.has_value() && std::string_view(*a) == std::string_view(b);
  }
};
}  // namespace detail

/// What a link says about the campaign it belongs to. A field that holds the empty text is present.
struct UTMParameters {
  detail::OptionalText campaign = std::nullopt;
  detail::OptionalText content = std::nullopt;
  detail::OptionalText medium = std::nullopt;
  detail::OptionalText name = std::nullopt;
  detail::OptionalText source = std::nullopt;
  detail::OptionalText term = std::nullopt;
};

/// The parameters in the query of `url`, taken from its own text: a base is not looked at.
/// Result: each field holds the percent-decoded value of the last item that bears its key. An item with nothing behind
/// its "=" sets the empty text, one without "=" sets the field back to absent.
/// Empty when: there is no link, it cannot be decomposed, it has no query, or every field would be absent.
template <class ClassType>
requires std::same_as<ClassType, UTMParameters>
[[nodiscard]] std::optional<ClassType> fromUrl(const std::optional<URL>& url);
template <>
HAVRIN_EXPORT std::optional<UTMParameters> fromUrl<UTMParameters>(const std::optional<URL>& url);

/// `url`, resolved against its base, with an item for each present field appended to its query, in the order of the
/// fields. The query stays as it is written, older parameters too: they are neither removed nor
/// replaced. The query is written also when no field is present: it is then a lone "?" where there was none. Empty
/// when: the link, or a base that is to be resolved against, cannot be decomposed.
[[nodiscard]] HAVRIN_EXPORT std::optional<URL> adding(const URL& url, const UTMParameters& parameters);

/// Replaces `url` with adding(url, parameters); leaves it as it is where that is empty.
HAVRIN_EXPORT void add(URL& url, const UTMParameters& parameters);

}  // namespace havrin
