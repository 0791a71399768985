// Objects as texts, so that a row of a table can say what is expected, and texts as objects.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/foundation/string.h>
#include <HavrinFoundation/platform/object/exception.h>

#include "exception_name.h"

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

}  // namespace havrin
