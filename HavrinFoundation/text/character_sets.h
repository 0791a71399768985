// SPDX-License-Identifier: Apache-2.0
// Four named character sets, two of which the application may replace. As messages: character_sets_messages.h.
//
//   hexadecimal<CharacterSet>().contains(U'g')                           false
//   containsOnlyCharacters("a-b", validSubhavrinName<CharacterSet>())    false
//   setUrlSchemeAllowed<CharacterSet>(CharacterSet("a"));                every surface gives the new set from now on
//   changeValidSubhavrinName<CharacterSet>([](CharacterSet& set) { set.insert(U'-'); });
//
// Each is one value for the whole process, built at its first use, by whichever thread comes first, and never
// destroyed. What is read is a copy, which shares the storage. Reads and writes of the two settable sets take no lock:
// a set is replaced or changed while no other thread uses it.
#pragma once

#include <HavrinFoundation/platform/base/invoke.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/unicode/character_set.h>

#include <concepts>
#include <utility>

namespace havrin {

namespace detail {
HAVRIN_EXPORT const CharacterSet& hexadecimalSet();
HAVRIN_EXPORT const CharacterSet& asciiAlphabetSet();
HAVRIN_EXPORT CharacterSet& urlSchemeAllowedSet();
HAVRIN_EXPORT CharacterSet& validSubhavrinNameSet();
}  // namespace detail

/// 0-9, a-f, A-F: 22 characters.
template <std::same_as<CharacterSet> ClassType>
[[nodiscard]] ClassType hexadecimal() {
  return detail::hexadecimalSet();
}

/// a-z, A-Z: 52 characters.
template <std::same_as<CharacterSet> ClassType>
[[nodiscard]] ClassType asciiAlphabet() {
  return detail::asciiAlphabetSet();
}

/// At first asciiAlphabet, 0-9, "+", "-" and ".": 65 characters, those that a link's scheme may have. The set does
/// not say which of them may come first.
/// Source: RFC 3986, 3.1.
template <std::same_as<CharacterSet> ClassType>
[[nodiscard]] ClassType urlSchemeAllowed() {
  return detail::urlSchemeAllowedSet();
}
template <std::same_as<CharacterSet> ClassType>
void setUrlSchemeAllowed(ClassType value) {
  detail::urlSchemeAllowedSet() = std::move(value);
}
/// Calls `change(CharacterSet&)` with the set itself.
template <std::same_as<CharacterSet> ClassType, std::invocable<ClassType&> Function>
void changeUrlSchemeAllowed(Function&& change) {
  detail::invoke(std::forward<Function>(change), detail::urlSchemeAllowedSet());
}

/// At first asciiAlphabet, 0-9 and "_": 63 characters.
template <std::same_as<CharacterSet> ClassType>
[[nodiscard]] ClassType validSubhavrinName() {
  return detail::validSubhavrinNameSet();
}
template <std::same_as<CharacterSet> ClassType>
void setValidSubhavrinName(ClassType value) {
  detail::validSubhavrinNameSet() = std::move(value);
}
/// Calls `change(CharacterSet&)` with the set itself.
template <std::same_as<CharacterSet> ClassType, std::invocable<ClassType&> Function>
void changeValidSubhavrinName(Function&& change) {
  detail::invoke(std::forward<Function>(change), detail::validSubhavrinNameSet());
}

}  // namespace havrin
