// SPDX-License-Identifier: Apache-2.0
// Sets of Unicode scalars, and the search for their members in text.
//
//   CharacterSet vowels("aeiou");
//   vowels.contains(U'e')                          true
//   rangeOfCharacter("12é", CharacterSet::letters())    {2, 4}
//   CharacterSet::decimalDigits().firstOtherIn("12é")   2
//   CharacterSet::decimalDigits().firstOtherIn("12")    2: the end of the text, there is none
//
// A set is a value. Copies share their storage until one of them is changed; `inverted()` shares it too. Reading one
// set from several threads is safe, changing it while another thread uses it is not. A set holds scalars, 0 to U+10FFFF
// without the surrogates: a letter and its combining mark are two. Text is searched scalar by scalar; ill-formed parts
// count as U+FFFD (unicode.h).
//
// Left out: intersection, subtraction and symmetric difference, supersets, the bitmap form, the platform's other
// predefined sets (punctuation, symbols, controls, link components), searches with options or from the end.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

namespace havrin {

namespace detail {
class CharacterSetStorage;
}  // namespace detail

inline namespace platform {

class HAVRIN_EXPORT CharacterSet {
 public:
  /// The empty set. Cost: no allocation.
  constexpr CharacterSet() noexcept = default;
  /// The scalars of a text, or of a range.
  explicit CharacterSet(std::string_view charactersIn);
  explicit CharacterSet(std::nullptr_t) = delete;  // not a text
  explicit CharacterSet(ClosedRange<char32_t> charactersIn);

  CharacterSet(const CharacterSet& other) noexcept;
  CharacterSet(CharacterSet&& other) noexcept
      : storage_(std::exchange(other.storage_, nullptr)), inverted_(std::exchange(other.inverted_, false)) {}
  CharacterSet& operator=(CharacterSet other) noexcept {
    std::swap(storage_, other.storage_);
    std::swap(inverted_, other.inverted_);
    return *this;
  }
  ~CharacterSet();

  /// Sets of general categories. Result: the same storage at every call, built at the first.
  [[nodiscard]] static CharacterSet letters();                 // L* and M*
  [[nodiscard]] static CharacterSet decimalDigits();           // Nd
  [[nodiscard]] static CharacterSet alphanumerics();           // L*, M* and N*
  [[nodiscard]] static CharacterSet uppercaseLetters();        // Lu and Lt
  [[nodiscard]] static CharacterSet lowercaseLetters();        // Ll
  [[nodiscard]] static CharacterSet whitespaces();             // Zs and U+0009
  [[nodiscard]] static CharacterSet newlines();                // U+000A to U+000D, U+0085, U+2028, U+2029
  [[nodiscard]] static CharacterSet whitespacesAndNewlines();  // Z*, U+0009 to U+000D, U+0085

  /// Whether `scalar` is a member; false for every surrogate and value above U+10FFFF. Cost: constant.
  [[nodiscard]] bool contains(char32_t scalar) const noexcept;

  /// Adds or takes out scalars. Values that are not scalars, also within a range, are ignored.
  void insert(char32_t scalar) { setMembership({scalar, scalar}, true); }
  void insert(ClosedRange<char32_t> range) { setMembership(range, true); }
  void insert(std::string_view charactersIn) { setMembership(charactersIn, true); }
  void remove(char32_t scalar) { setMembership({scalar, scalar}, false); }
  void remove(ClosedRange<char32_t> range) { setMembership(range, false); }
  void remove(std::string_view charactersIn) { setMembership(charactersIn, false); }

  /// Adds the members of `other`.
  void formUnion(const CharacterSet& other);

  /// All scalars that are not members, assigned or not. Cost: constant.
  [[nodiscard]] CharacterSet inverted() const noexcept;

  /// Where the first character of `text` begins that is a member, or that is none; the length of the text when there is
  /// no such character. In units of the text.
  /// Cost: a table lookup per scalar; runs of ASCII text many bytes at a time.
  [[nodiscard]] std::size_t firstMemberIn(std::string_view text) const noexcept { return search(text, true); }
  [[nodiscard]] std::size_t firstMemberIn(std::u16string_view text) const noexcept { return search(text, true); }
  [[nodiscard]] std::size_t firstOtherIn(std::string_view text) const noexcept { return search(text, false); }
  [[nodiscard]] std::size_t firstOtherIn(std::u16string_view text) const noexcept { return search(text, false); }

  /// Whether both have the same members.
  [[nodiscard]] friend bool operator==(const CharacterSet& left, const CharacterSet& right) noexcept {
    return left.hasSameMembersAs(right);
  }

  /// Equal for equal sets: made from the members below U+0100.
  [[nodiscard]] std::uint64_t hash() const noexcept;

 private:
  void setMembership(ClosedRange<char32_t> range, bool member);
  void setMembership(std::string_view charactersIn, bool member);
  detail::CharacterSetStorage& ownStorage();
  bool hasSameMembersAs(const CharacterSet& other) const noexcept;
  std::size_t search(std::string_view text, bool forMember) const noexcept;
  std::size_t search(std::u16string_view text, bool forMember) const noexcept;

  detail::CharacterSetStorage* storage_ = nullptr;  // counted; null while nothing was ever stored
  bool inverted_ = false;                           // the members are the scalars that are not in the storage
};

/// The first character of `text` that is in `set`: where it begins and ends, in units of the text.
/// Empty when: no character of the text is in the set.
[[nodiscard]] HAVRIN_EXPORT std::optional<Range<std::size_t>> rangeOfCharacter(std::string_view text,
                                                                               const CharacterSet& set) noexcept;
[[nodiscard]] HAVRIN_EXPORT std::optional<Range<std::size_t>> rangeOfCharacter(std::u16string_view text,
                                                                               const CharacterSet& set) noexcept;

}  // namespace platform
}  // namespace havrin
