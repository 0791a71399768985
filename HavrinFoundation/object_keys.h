// SPDX-License-Identifier: Apache-2.0
// Classes, selectors and objects as keys of the standard containers. Values: keys.h. Not in the umbrella header: a file
// that uses it includes it.
//
//   std::unordered_map<Class, int> counts;
//   ++counts[classOf<NSString>()];
//   std::set<Selector> sent{selector<"select:">, selector<"map:">};
//   sent.begin()->name()                                                  "map:"
//   std::unordered_map<Strong<NSString>, int, ObjectHash, ObjectEqual> plays;
//   plays[makeString("Oslo")] = 3;
//   plays[makeString("Oslo")]                                             3: found by value
//
// Without ObjectHash and ObjectEqual a Strong is a key by identity.
// Left out: an order of objects and classes.
#pragma once

#include <HavrinFoundation/platform/object/class.h>
#include <HavrinFoundation/platform/object/object.h>
#include <HavrinFoundation/platform/object/reference.h>
#include <HavrinFoundation/platform/object/selector.h>

#include <compare>
#include <cstddef>
#include <string_view>

namespace havrin {
inline namespace platform {

/// The order of the names; null is first.
[[nodiscard]] inline std::strong_ordering operator<=>(Selector first, Selector second) {
  return first.name() <=> second.name();
}

/// Hashes references by what they refer to, with `NSObject::hash`; 0 for null.
struct ObjectHash {
  template <class Type>
  std::size_t operator()(const Strong<Type>& object) const {
    return object ? static_cast<std::size_t>(object->hash()) : 0;
  }
};

/// Compares references by what they refer to, with `NSObject::isEqual`; null equals null.
struct ObjectEqual {
  template <class First, class Second>
  bool operator()(const Strong<First>& first, const Strong<Second>& second) const {
    return first.get() == second.get() || (first && second && first->isEqual(second));
  }
};

}  // namespace platform
}  // namespace havrin

template <>
struct std::hash<havrin::Selector> {
  std::size_t operator()(havrin::Selector selector) const noexcept { return std::hash<const void*>()(selector.key()); }
};

template <>
struct std::hash<havrin::Class> {
  std::size_t operator()(havrin::Class cls) const noexcept { return std::hash<const void*>()(cls.object()); }
};

template <class Type>
struct std::hash<havrin::ClassOf<Type>> : std::hash<havrin::Class> {};
