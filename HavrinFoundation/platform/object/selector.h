// SPDX-License-Identifier: Apache-2.0
// Selectors: the names of messages.
//
//   selector<"select:">                    what the source writes; one per image, its address means nothing
//   Selector s = selector<"select:">;      the interned name: compares, keys associations, travels to other threads
//   s.name()                               "select:"
//   Selector::known("noSuchName")          null unless something in the process bears the name
//
// Left out: selectors for the argument types (signatures are checked where a message is first sent).
#pragma once

#include <HavrinFoundation/platform/base/text.h>
#include <HavrinFoundation/platform/export.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace havrin {
inline namespace platform {

class NSString;

/// What a source line's selector is compiled to: the name, and the number that the runtime gives it on first use.
/// Numbers are equal for equal names in every image; 0 means not seen yet, or numbered beyond the dispatch tables.
struct SelectorConstant {
  const char* name;
  mutable std::atomic<std::uint32_t> number{0};

  constexpr explicit SelectorConstant(const char* text) : name(text) {}
};

template <Text Name>
inline constinit const SelectorConstant selector{Name.text};

struct SelectorRecord;

/// A selector as a value: interned by name, so equal names are one record in the whole process. Null by default.
/// Threads: any.
class HAVRIN_EXPORT Selector {
 public:
  constexpr Selector() = default;
  /// Cost: a table read once the name has been seen, a look-up under a lock before that.
  Selector(const SelectorConstant& constant);

  /// The selector of this name, made when there is none: for names that the program spells.
  [[nodiscard]] static Selector named(std::string_view name);
  /// The selector of this name, or null when nothing bears it: for names from outside, which must not grow the table.
  [[nodiscard]] static Selector known(std::string_view name);

  /// The name as the source spells it; empty for null. Lives as long as the process.
  [[nodiscard]] std::string_view name() const;
  /// The name as an object, the same one each time; null for null. Lives as long as the process.
  [[nodiscard]] NSString* nameString() const;
  /// An address that is this selector's alone: a key for associated values. Null for null.
  [[nodiscard]] const void* key() const { return record_; }
  explicit operator bool() const { return record_ != nullptr; }
  friend bool operator==(Selector, Selector) = default;

  /// The runtime's own record, and its number in the dispatch tables (0: beyond them).
  [[nodiscard]] const SelectorRecord* record() const { return record_; }
  [[nodiscard]] std::uint32_t number() const;
  explicit Selector(const SelectorRecord* record) : record_(record) {}

 private:
  const SelectorRecord* record_ = nullptr;
};

}  // namespace platform
}  // namespace havrin
