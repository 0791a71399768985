// SPDX-License-Identifier: Apache-2.0
// NSString(HavrinFoundation), ranges, character tests, repetition: string_helpers.h on strings, typed and as messages.
//
//   entireRange(*makeString("👍"))                                                  {0, 2}
//   containsOnlyCharacters(*makeString("abc1"), CharacterSet::letters())            false
//   send<"containsAnyCharactersInSet:">(text, makeCharacterSet(CharacterSet("!?")))  true where one of them occurs
//   send<"stringByRepeatingString:times:joinedBy:">(classOf<NSString>(), makeString("ab"), 3, nullptr)  "ababab"
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/character_set_object.h>
#include <HavrinFoundation/platform/foundation/value.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdint>

namespace havrin {

/// {0, the string's `length`}.
[[nodiscard]] HAVRIN_EXPORT NSRange entireRange(const NSString& string);

/// Whether a character of `string` is in `set`; for the empty string, false. A lone surrogate counts as U+FFFD.
[[nodiscard]] HAVRIN_EXPORT bool containsAnyCharacters(const NSString& string, const CharacterSet& set);

/// Whether every character of `string` is in `set`; for the empty string, true. Sends `containsAnyCharactersInSet:` to
/// the string with the complement of the set, so that an override takes part.
[[nodiscard]] HAVRIN_EXPORT bool containsOnlyCharacters(const NSString& string, const CharacterSet& set);

inline namespace platform {

/// As `entireRange(const NSString&)`; {0, 0} for null. By key, an NSValue.
template <>
struct Message<NSString, "entireRange"> : Signature<NSRange()> {};
/// As `containsAnyCharacters`; false for null. Throws: NSException (InvalidArgument) for a null set.
template <>
struct Message<NSString, "containsAnyCharactersInSet:"> : Signature<bool(NSCharacterSet*)> {};
/// As `containsOnlyCharacters`; false for null. Throws: NSException (InvalidArgument) for a null set.
template <>
struct Message<NSString, "containsOnlyCharactersInSet:"> : Signature<bool(NSCharacterSet*)> {};
/// As `repeating<NSString>`, never null: a null string counts as the empty one, a null separator is none. Throws:
/// NSException (InvalidArgument) where the result does not fit in memory.
template <>
struct ClassMessage<NSString, "stringByRepeatingString:times:joinedBy:">
    : Signature<Strong<NSString>(NSString* string, std::int64_t times, NSString* joinedBy)> {};

}  // namespace platform

}  // namespace havrin
