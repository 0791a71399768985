// SPDX-License-Identifier: Apache-2.0
// What a class has for a key: the rows that key-value coding and observing go through.
#pragma once

#include <HavrinFoundation/platform/object/class.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/platform/observing/class_key_cache.h>
#include <HavrinFoundation/platform/observing/keyed_value.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace havrin {
inline namespace platform {

struct KeyRows {
  const MethodRow* getter = nullptr;
  const MethodRow* setter = nullptr;
  KeyedValue (*readNumber)(Implementation getter, NSObject* self) = nullptr;  // for a getter that returns a number
  bool isLeftToRoot = false;  // neither `valueForKey:` nor `valueForKeyPath:` is overridden
  friend bool operator==(const KeyRows&, const KeyRows&) = default;
};

using KnownRows = ClassKeyCache<KeyRows>::Known;

/// The rows that answer `key` in the class that the program sees. Kept per class and key until some class's methods
/// change; keys that have no row are not kept, and no key makes a selector.
/// Result: null when there is none; else good for the number of method changes at the call, and never destroyed.
/// Cost: a hash look-up. Threads: any.
[[nodiscard]] const KnownRows* knownRowsForKey(const ClassObject& shown, std::string_view key);
[[nodiscard]] inline KeyRows rowsForKey(const ClassObject& shown, std::string_view key) {
  const KnownRows* known = knownRowsForKey(shown, key);
  return known ? known->value() : KeyRows();
}

/// The value that `valueForKeyPath:` returns. For a path of one key it is read without a message, and a number stays a
/// number, unless the class overrides how keys are read. `known`: the key's rows, if the caller has them.
/// Throws: what getters and overrides throw. The caller holds `self`.
[[nodiscard]] KeyedValue readPath(NSObject& self, NSString& path, const KnownRows* known = nullptr);

/// The rows that would answer `key` if their types could be boxed: for the text of an exception.
[[nodiscard]] KeyRows unboxableRowsForKey(const ClassObject& shown, std::string_view key);

/// The row of this name that key-value coding can call with `arguments` objects; null when there is none.
[[nodiscard]] const MethodRow* callableRow(const ClassObject& cls, std::string_view name, std::size_t arguments);

/// "title" as "Title".
[[nodiscard]] std::string capitalised(std::string_view key);

/// "title" as "setTitle:".
[[nodiscard]] std::string setterName(std::string_view key);

/// Calls `body` with the text of a key as UTF-8, which for plain ASCII is the string's own.
template <class Body>
decltype(auto) withText(const NSString& key, Body&& body) {
  if (key.isPlain() && !key.isWide()) return body(key.narrow());
  return body(std::string_view(utf8(key)));
}

/// An immutable string of the layer's own class with the text of now, so that comparing it runs nobody else's code.
[[nodiscard]] Strong<NSString> plainString(NSString& text);

/// A path, as it was when it was given, and its keys: "host.name" has "host" and "name". At least one, which may be
/// empty. Cost: no allocation for a path of one key.
class KeyPath {
 public:
  explicit KeyPath(NSString& path);

  /// A plainString().
  [[nodiscard]] NSString& text() const { return *text_; }
  [[nodiscard]] std::span<const Strong<NSString>> keys() const {
    return several_.empty() ? std::span(&text_, 1) : std::span(several_.data(), several_.size());
  }

 private:
  Strong<NSString> text_;
  std::vector<Strong<NSString>> several_;  // empty for one key
};

/// Throws NSException (InvalidArgument) when `key` is null.
void requireKey(const NSObject& self, const NSString* key, std::string_view selector);

}  // namespace platform
}  // namespace havrin
