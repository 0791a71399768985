// SPDX-License-Identifier: Apache-2.0
// What most tests of objects use: strings, numbers and arrays, and objects as texts, so that a row can say what is expected.
#pragma once

#include "testing.h"
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/string.h>

namespace havrin {

inline Strong<NSString> s(std::string_view text) { return makeString(text); }
inline Strong<NSString> orNull(std::optional<std::string_view> text) {
  return text ? makeString(*text) : Strong<NSString>();
}

/// The object's description; "nil" for none.
inline std::string text(const NSObject* object) { return object ? utf8(*object->description()) : "nil"; }

/// A string for each letter: letters("ab") is (a, b).
inline Strong<NSMutableArray> letters(std::string_view word) {
  auto list = makeMutableArray({});
  for (const char letter : word) list->addObject(s(std::string_view(&letter, 1)));
  return list;
}

/// Expects `object` to be equal to each of `equal`, both ways and by hash, and to none of `different` or null.
inline void expectEquality(NSObject* object, const std::vector<Strong<NSObject>>& equal,
                           const std::vector<Strong<NSObject>>& different) {
  for (const auto& other : equal) {
    EXPECT_TRUE(object->isEqual(other) && other->isEqual(object)) << text(other);
    EXPECT_EQ(object->hash(), other->hash()) << text(other);
  }
  for (const auto& other : different) EXPECT_FALSE(object->isEqual(other)) << text(other);
  EXPECT_FALSE(object->isEqual(nullptr));
}

/// The name and the reason of the NSException that `body` throws, as "name: reason"; "none" when it throws none.
template <class F>
std::string thrownBy(F body) {
  try {
    body();
  } catch (const NSException& exception) {
    EXPECT_FALSE(exception.reason().empty());
    return exception.name() + ": " + exception.reason();
  }
  return "none";
}

/// The name alone.
template <class F>
std::string nameOf(F body) {
  const std::string thrown = thrownBy(std::move(body));
  return thrown.substr(0, thrown.find(':'));
}

/// Whether a text contains another.
inline testing::AssertionResult saysWhy(const std::string& text, std::string_view why) {
  if (text.find(why) != std::string::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << text;
}

}  // namespace havrin
