// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/string_helpers_messages.h>

#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/text/string_helpers.h>

#include <new>
#include <stdexcept>
#include <string>

namespace havrin {

NSRange entireRange(const NSString& string) { return {0, string.length()}; }

bool containsAnyCharacters(const NSString& string, const CharacterSet& set) {
  // A subclass of the program's answers for its own characters.
  if (!string.isPlain()) return string.rangeOfCharacterFromSet(set).location != kNotFound;
  if (string.isWide()) return set.firstMemberIn(string.wide()) != string.wide().size();
  return containsAnyCharacters(string.narrow(), set);
}

// Sends the other test with all other characters, so that one override changes both answers.
bool containsOnlyCharacters(const NSString& string, const CharacterSet& set) {
  return !send<"containsAnyCharactersInSet:">(string, makeCharacterSet(set.inverted()));
}

namespace {

NSRange entireRangeMessage(NSString& self) { return entireRange(self); }

bool containsAnyCharactersInSet(NSString& self, NSCharacterSet* set) {
  if (!set) throwNullArgument(self, "containsAnyCharactersInSet:", "set");
  return containsAnyCharacters(self, set->characterSet());
}

bool containsOnlyCharactersInSet(NSString& self, NSCharacterSet* set) {
  if (!set) throwNullArgument(self, "containsOnlyCharactersInSet:", "set");
  return containsOnlyCharacters(self, set->characterSet());
}

Strong<NSString> stringByRepeatingString(ClassOf<NSString>, NSString* string, std::int64_t times, NSString* joinedBy) {
  const std::string text = string ? utf8(*string) : std::string();
  const std::string separator = joinedBy ? utf8(*joinedBy) : std::string();
  const auto throwTooLong = [&] {
    throw NSException(
        NSInvalidArgumentException,
        "+[NSString stringByRepeatingString:times:joinedBy:]: expected a result that fits in memory, got " +
            std::to_string(times) + " copies of " + std::to_string(text.size() + separator.size()) + " bytes");
  };
  try {
    return makeString(repeating<NSString>(text, times, separator));
  } catch (const std::length_error&) {
    throwTooLong();
  } catch (const std::bad_alloc&) {
    throwTooLong();
  }
  return nullptr;
}

constexpr MethodRow kRows[] = {row<NSString, "entireRange", entireRangeMessage>(),
                               row<NSString, "containsAnyCharactersInSet:", containsAnyCharactersInSet>(),
                               row<NSString, "containsOnlyCharactersInSet:", containsOnlyCharactersInSet>()};
constexpr MethodRow kClassRows[] = {
    classRow<NSString, "stringByRepeatingString:times:joinedBy:", stringByRepeatingString>()};

}  // namespace

extern constinit const Category kStringHelpers{classObject<NSString>, "HavrinFoundation", kRows, kClassRows};

}  // namespace havrin
