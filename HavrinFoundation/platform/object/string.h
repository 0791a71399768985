// SPDX-License-Identifier: Apache-2.0
// NSString and NSMutableString: text as UTF-16 units. Text below U+0080 is stored one byte a unit.
//
//   Strong<NSString> s = makeString("a👍");     // from UTF-8, ill-formed parts as U+FFFD
//   s->length()                                 3 units
//   s->characterAtIndex(1)                      0xD83D
//   utf8(*s)                                    "a👍"
//   makeString("  42abc")->integerValue()       42
//   s->rangeOfCharacterFromSet(letters)          {0, 1}
//   s->isEqual(makeString("a👍"))               true: unit by unit; "é" and "e\u0301" differ
//
// A subclass that overrides `length` and `characterAtIndex` works everywhere a string does.
// There is no conversion from text to objects that the source does not spell: makeString, or a constant string.
// Left out: formats, searching and comparing (but for what the library's facilities do), paths, encodings other than
// UTF-8 and UTF-16, normalisation, localised strings.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

class ConstantString;
class CharacterSet;

class HAVRIN_EXPORT NSString : public Object<NSString, NSObject> {
 public:
  using Leaf = NSString;

  /// The empty string.
  NSString() noexcept = default;
  /// From UTF-8 and from UTF-16; lone surrogates stay in the latter.
  explicit NSString(std::string_view text);
  explicit NSString(std::u16string_view units);
  constexpr ~NSString() override {
    if (owned_) freeUnits();
  }

  /// How many UTF-16 units.
  [[nodiscard]] virtual std::uint64_t length() const { return length_; }
  /// The unit at `index`. Throws: NSException (Range) at or beyond the end.
  [[nodiscard]] virtual char16_t characterAtIndex(std::uint64_t index) const;

  /// The number at the beginning of the text: white space, one sign, ASCII digits up to the first other character.
  /// Result: 0 for none; saturates at the ends of 64 bits. "1,000" gives 1, "0x10" gives 0.
  [[nodiscard]] virtual std::int64_t integerValue() const;
  /// True when after white space, one sign and zeros the next character is one of Y y T t 1...9.
  [[nodiscard]] virtual bool boolValue() const;

  /// The first character that is in `set`, two units long outside the first plane; {kNotFound, 0} when there is none.
  /// A lone surrogate counts as U+FFFD. Throws: NSException (InvalidArgument) for a null set.
  [[nodiscard]] virtual NSRange rangeOfCharacterFromSet(const CharacterSet& set) const;

  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  /// The string itself.
  [[nodiscard]] Strong<NSString> description() const override;
  [[nodiscard]] Strong<NSObject> copy() const override;
  [[nodiscard]] Strong<NSObject> mutableCopy() const override;

  /// The units as stored, without copying: either view may be empty. Empty both for a subclass that overrides `length`
  /// or `characterAtIndex`; `isPlain` says which.
  [[nodiscard]] std::string_view narrow() const { return wide_ ? std::string_view() : view<char>(); }
  [[nodiscard]] std::u16string_view wide() const { return wide_ ? view<char16_t>() : std::u16string_view(); }
  [[nodiscard]] bool isWide() const { return wide_; }
  /// True when the units above are the text: the class is the layer's own.
  [[nodiscard]] bool isPlain() const;

  using Protocols = List<NSSecureCoding>;

 protected:
  friend class ConstantString;
  friend HAVRIN_EXPORT Strong<NSString> makeString(std::string_view text);
  friend HAVRIN_EXPORT Strong<NSString> makeString(std::u16string_view units);
  constexpr NSString(Placed placed, const char* text, std::uint64_t length) noexcept
      : Object(placed), units_(text), length_(length) {}

  /// Points the string at units that a subclass keeps.
  void borrow(std::string_view narrow) noexcept;
  void borrow(std::u16string_view wide) noexcept;

 private:
  // For makeString: the units follow the object, in one allocation with it.
  struct Behind {};
  template <class Unit>
  NSString(Behind, std::basic_string_view<Unit> units) noexcept;
  template <class Unit>
  static Strong<NSString> withUnitsBehind(std::basic_string_view<Unit> units);

  template <class Unit>
  [[nodiscard]] std::basic_string_view<Unit> view() const {
    return {static_cast<const Unit*>(units_), static_cast<std::size_t>(length_)};
  }
  void own(std::string_view narrow);
  void own(std::u16string_view wide);
  void freeUnits() noexcept;

  const void* units_ = "";
  std::uint64_t length_ = 0;
  bool wide_ = false;
  bool owned_ = false;
};

/// A string of its own from UTF-8 (ill-formed parts as U+FFFD) or from UTF-16 units (lone surrogates stay).
/// Cost: one allocation and a copy.
[[nodiscard]] HAVRIN_EXPORT Strong<NSString> makeString(std::string_view text);
[[nodiscard]] HAVRIN_EXPORT Strong<NSString> makeString(std::u16string_view units);

/// NSString's boolValue of UTF-8 text. Cost: no allocation.
[[nodiscard]] HAVRIN_EXPORT bool boolValue(std::string_view text) noexcept;

/// The text as UTF-8, lone surrogates as U+FFFD.
[[nodiscard]] HAVRIN_EXPORT std::string utf8(const NSString& string);
/// The text as UTF-8; empty optional when it has a lone surrogate, for which there is no UTF-8.
[[nodiscard]] HAVRIN_EXPORT std::optional<std::string> strictUtf8(const NSString& string);
/// The UTF-16 units.
[[nodiscard]] HAVRIN_EXPORT std::u16string utf16(const NSString& string);

/// Text that grows. Threads: one at a time.
class HAVRIN_EXPORT NSMutableString : public Object<NSMutableString, NSString> {
 public:
  using Leaf = NSMutableString;

  NSMutableString() noexcept = default;
  explicit NSMutableString(std::string_view text);
  explicit NSMutableString(std::u16string_view units);
  ~NSMutableString() override;

  virtual void appendString(NSString* string);
  void append(std::string_view text);
  void append(std::u16string_view units);
  virtual void setString(NSString* string);

  [[nodiscard]] Strong<NSObject> copy() const override;

 private:
  void widen();
  void refresh() noexcept;

  std::string narrow_;
  std::u16string units16_;
  bool isWide_ = false;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSString>();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSMutableString>();

/// A string literal as an object, in the program's data and never destroyed: destructors of static objects may use it.
/// ASCII only. Must be constexpr, since compilers register a destructor for other variables; the conversion of a
/// non-const one does not compile.
///   constexpr ConstantString kPathStorage("keyPath");
///   constinit NSString* const kPath = kPathStorage;
/// An image lists its constant strings (see `Image`), so that they have their class before anything runs.
class ConstantString {
 public:
  template <std::size_t Size>
  consteval explicit ConstantString(const char (&text)[Size])
      : header_(nullptr, ObjectHeader::kImmortal), string_(NSString::Placed{}, text, Size - 1) {}
  // NOLINTNEXTLINE(modernize-use-equals-default): a defaulted one is deleted beside the union
  constexpr ~ConstantString() {}  // string_ is a member of a union, so that it is not destroyed

  constexpr operator NSString*() const& { return &string_; }
  constexpr NSString* operator->() const& { return &string_; }
  operator NSString*() & = delete;
  NSString* operator->() & = delete;

 private:
  mutable ObjectHeader header_;
  union {
    mutable NSString string_;
  };
};

/// Gives constant strings their class. Called for an image's own by its Loader.
HAVRIN_EXPORT void bindConstantStrings(std::span<const ConstantString* const> strings);

}  // namespace platform
}  // namespace havrin
