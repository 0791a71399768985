// SPDX-License-Identifier: Apache-2.0
// NSCharacterSet(HavrinFoundation), the four named sets: character_sets.h on character-set objects, typed and as messages.
//
//   hexadecimal<NSCharacterSet>()                                       the set of now as an object, new at each call
//   send<"h_URLSchemeAllowedCharacterSet">(classOf<NSCharacterSet>())   the same for the link schemes
//
// Neither surface keeps a set of its own: what setUrlSchemeAllowed<CharacterSet> replaces is what they give from then on.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/character_set_object.h>
#include <HavrinFoundation/text/character_sets.h>

#include <concepts>

namespace havrin {

/// The `CharacterSet` member of the same name, as an object: a plain NSCharacterSet, also for a subclass ClassType.
template <std::derived_from<NSCharacterSet> ClassType>
[[nodiscard]] Strong<NSCharacterSet> hexadecimal() {
  return makeCharacterSet(hexadecimal<CharacterSet>());
}
template <std::derived_from<NSCharacterSet> ClassType>
[[nodiscard]] Strong<NSCharacterSet> asciiAlphabet() {
  return makeCharacterSet(asciiAlphabet<CharacterSet>());
}
template <std::derived_from<NSCharacterSet> ClassType>
[[nodiscard]] Strong<NSCharacterSet> urlSchemeAllowed() {
  return makeCharacterSet(urlSchemeAllowed<CharacterSet>());
}
template <std::derived_from<NSCharacterSet> ClassType>
[[nodiscard]] Strong<NSCharacterSet> validSubhavrinName() {
  return makeCharacterSet(validSubhavrinName<CharacterSet>());
}

inline namespace platform {

/// As `hexadecimal<NSCharacterSet>`.
template <>
struct ClassMessage<NSCharacterSet, "hexadecimalCharacterSet"> : Signature<Strong<NSCharacterSet>()> {};
/// As `asciiAlphabet<NSCharacterSet>`.
template <>
struct ClassMessage<NSCharacterSet, "asciiAlphabetCharacterSet"> : Signature<Strong<NSCharacterSet>()> {};
/// As `urlSchemeAllowed<NSCharacterSet>`.
template <>
struct ClassMessage<NSCharacterSet, "h_URLSchemeAllowedCharacterSet"> : Signature<Strong<NSCharacterSet>()> {};
/// As `validSubhavrinName<NSCharacterSet>`.
template <>
struct ClassMessage<NSCharacterSet, "validSubhavrinNameCharacterSet"> : Signature<Strong<NSCharacterSet>()> {};

}  // namespace platform

}  // namespace havrin
