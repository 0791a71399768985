// SPDX-License-Identifier: Apache-2.0
// operator<< for objects, references to them, classes and selectors. Values: printing.h; {fmt}: formatting.h. Not in the
// umbrella header: a file that uses it includes it.
//
//   std::ostringstream out;
//   out << makeNumber(3) << ' ' << *makeString("Oslo") << ' ' << classOf<NSNumber>() << ' ' << Selector();
//   out.str()                                       "3 Oslo NSNumber null"
//
// An object prints its description, which a subclass may override; null prints as "null".
// Left out: plain pointers to objects, which print as addresses; weak references.
#pragma once

#include <HavrinFoundation/platform/object/class.h>
#include <HavrinFoundation/platform/object/object.h>
#include <HavrinFoundation/platform/object/reference.h>
#include <HavrinFoundation/platform/object/selector.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/printing.h>

#include <concepts>
#include <string>
#include <string_view>

namespace havrin::detail {

template <std::derived_from<NSObject> Type>
struct Printing<Type> {
  static std::string text(const Type& object) { return utf8(*object.description()); }
};

template <class Type>
struct Printing<Strong<Type>> {
  static std::string text(const Strong<Type>& object) {
    return object ? utf8(*object->description()) : std::string("null");
  }
};

template <class Type>
requires OneOf<Type, Class, Selector> || std::derived_from<Type, Class>
struct Printing<Type> {
  static std::string text(const Type& named) { return std::string(named ? named.name() : "null"); }
};

}  // namespace havrin::detail
