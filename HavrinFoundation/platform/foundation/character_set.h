// Sets of Unicode scalars, and the search for their members in text.
//
//   CharacterSet vowels("aeiou");
//   vowels.contains(U'e')                          true
//   rangeOfCharacter("12é", CharacterSet::letters()) {2, 4}
//   rangeOfCharacterOutside("12é", CharacterSet::decimalDigits())  {2, 4}
//
// A set is a value. Copies share their storage until one of them is changed; `inverted()` shares it too. Reading one
// set from several threads is safe, changing it while another thread uses it is not. A set holds scalars, 0 to U+10FFFF
// without the surrogates: a letter and its combining mark are two. Text is searched scalar by scalar; ill-formed parts
// count as U+FFFD (unicode.h).
//
// Left out: intersection, subtraction and symmetric difference, supersets, the bitmap form, the platform's other
// predefined sets (punctuation, symbols, controls, link components), searches with options or from the end.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/range.h>

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace havrin::inline platform {

class HAVRIN_EXPORT CharacterSet {
 public:
  /// The empty set. Cost: no allocation.
  constexpr CharacterSet() noexcept = default;
  /// The scalars of a text, or of a range.
  explicit CharacterSet(std::string_view charactersIn);
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

  /// Adds or takes out scalars. What is no scalar, also within a range, is passed over.
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

  /// Whether both have the same members.
  [[nodiscard]] friend bool operator==(const CharacterSet& left, const CharacterSet& right) noexcept {
    return left.hasSameMembersAs(right);
  }

 private:
  class Storage;
  using Found = std::optional<Range<std::size_t>>;

  friend Found rangeOfCharacter(std::string_view, const CharacterSet&) noexcept;
  friend Found rangeOfCharacter(std::u16string_view, const CharacterSet&) noexcept;
  friend Found rangeOfCharacterOutside(std::string_view, const CharacterSet&) noexcept;
  friend Found rangeOfCharacterOutside(std::u16string_view, const CharacterSet&) noexcept;

  void setMembership(ClosedRange<char32_t> range, bool member);
  void setMembership(std::string_view charactersIn, bool member);
  Storage& ownStorage();
  bool hasSameMembersAs(const CharacterSet& other) const noexcept;
  Found find(std::string_view text, bool outside) const noexcept;
  Found find(std::u16string_view text, bool outside) const noexcept;

  Storage* storage_ = nullptr;  // counted; null while nothing was ever stored
  bool inverted_ = false;       // the members are the scalars that are not in the storage
};

/// Where the first character of `text` that is in `set` stands, in units of the text.
/// Empty when: no character of the text is in the set.
/// Cost: one to two table lookups per scalar; runs of ASCII text many bytes at a time.
[[nodiscard]] inline std::optional<Range<std::size_t>> rangeOfCharacter(std::string_view text,
                                                                        const CharacterSet& set) noexcept {
  return set.find(text, false);
}
[[nodiscard]] inline std::optional<Range<std::size_t>> rangeOfCharacter(std::u16string_view text,
                                                                        const CharacterSet& set) noexcept {
  return set.find(text, false);
}

/// rangeOfCharacter(text, set.inverted()).
[[nodiscard]] inline std::optional<Range<std::size_t>> rangeOfCharacterOutside(std::string_view text,
                                                                               const CharacterSet& set) noexcept {
  return set.find(text, true);
}
[[nodiscard]] inline std::optional<Range<std::size_t>> rangeOfCharacterOutside(std::u16string_view text,
                                                                               const CharacterSet& set) noexcept {
  return set.find(text, true);
}

}  // namespace havrin::inline platform
