// SPDX-License-Identifier: Apache-2.0
// Key paths that the compiler checks: a key that the class has no message for does not compile.
//
//   send<"valueForKeyPath:">(station, keyPath<Station, "host.name">)      null: the station has no host
//   utf8(*keyPath<Station, "host.name">)               "host.name"
//   keyPath<Station, "hots.name">                      does not compile: "... no message for a step ..."
//
// A step is answered as key-value coding answers it: <key>, get<Key>, is<Key> or _<key>. Every step but the last must
// lead to an object whose class is declared.
#pragma once

#include <HavrinFoundation/platform/base/text.h>
#include <HavrinFoundation/platform/object/lazy_string.h>
#include <HavrinFoundation/platform/object/message.h>

namespace havrin {

namespace detail {

template <Text Path, std::size_t Start, std::size_t Length>
constexpr auto textPart() {
  Text<Length + 1> part;
  copyUnits(Path.text + Start, Length, part.text);
  return part;
}

// `prefix` before a key whose first letter is made upper-case: "get", "title" gives "getTitle".
template <std::size_t Parent, std::size_t Size>
constexpr auto prefixedKey(const char (&prefix)[Parent], const Text<Size>& key, bool capital) {
  Text<Parent + Size - 1> name;
  copyUnits(prefix, Parent - 1, name.text);
  copyUnits(key.text, Size, name.text + Parent - 1);
  char& first = name.text[Parent - 1];
  if (capital && first >= 'a' && first <= 'z') first = static_cast<char>(first - 32);
  return name;
}

template <class ClassType, Text Key>
constexpr auto findGetter() {
  constexpr auto kGet = prefixedKey("get", Key, true);
  constexpr auto kIs = prefixedKey("is", Key, true);
  constexpr auto kPrivate = prefixedKey("_", Key, false);
  if constexpr (Answers<ClassType, kGet>) {
    return MessageOf<ClassType, kGet>{};
  } else if constexpr (Answers<ClassType, Key>) {
    return MessageOf<ClassType, Key>{};
  } else if constexpr (Answers<ClassType, kIs>) {
    return MessageOf<ClassType, kIs>{};
  } else {
    return MessageOf<ClassType, kPrivate>{};
  }
}

template <class Result>
struct StepTarget {
  using Type = void;
};
template <class ValueType>
struct StepTarget<Strong<ValueType>> {
  using Type = ValueType;
};

template <class ClassType, Text Path>
consteval bool checkedPath() {
  constexpr std::size_t kDot = Path.view().find('.');
  constexpr std::size_t kEnd = kDot == std::string_view::npos ? Path.view().size() : kDot;
  if constexpr (std::is_void_v<ClassType>) {
    static_assert(never<ClassType>, "keyPath: a step before the last is not an object");
  } else {
    using Found = decltype(findGetter<ClassType, textPart<Path, 0, kEnd>()>());
    if constexpr (std::is_same_v<Found, NotFound>) {
      static_assert(never<ClassType>, "keyPath: the class has no message for a step: is the key spelt right?");
    } else if constexpr (!Found::template accepts<>() || std::is_void_v<typename Found::Result>) {
      static_assert(never<ClassType>, "keyPath: the message for a step takes an argument or returns nothing");
    } else if constexpr (kDot != std::string_view::npos) {
      using Next = typename StepTarget<typename Found::Result>::Type;
      return checkedPath<Next, textPart<Path, kDot + 1, Path.view().size() - kDot - 1>()>();
    }
  }
  return true;
}

template <class ClassType, Text Path>
requires(checkedPath<ClassType, Path>()) struct CheckedPath {
  static constexpr Text text = Path;
};

}  // namespace detail

inline namespace platform {

/// The key path as a string; converts to `NSString*`. Lives as long as the process.
template <class ClassType, Text Path>
inline constinit const LazyString keyPath{detail::CheckedPath<ClassType, Path>::text.text};

}  // namespace platform
}  // namespace havrin
