// SPDX-License-Identifier: Apache-2.0
// NSAttributedString and NSMutableAttributedString: text whose parts carry attributes.
//
//   auto title = make<NSAttributedString>(makeString("On air"), makeDictionary({{makeString("NSLink"), link}}));
//   title->length()                              6: UTF-16 units
//   title->attributesAtIndex(2).attributes       the dictionary
//   title->attributesAtIndex(2).range            {0, 6}: how far they reach
//
// Text and attributes are copied: later changes of mutable ones are not seen. Empty text has no attributes.
// A subclass that overrides `string` and `attributesAtIndex` works everywhere an attributed string does.
// Left out: single attributes by name, searches for them, text markup, what the attributes mean.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdint>
#include <span>
#include <vector>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSAttributedString : public Object<NSAttributedString, NSObject> {
 public:
  /// Attributes, never null, and the part of the text that they hold for.
  struct Run {
    Strong<NSDictionary> attributes;
    NSRange range;
  };

  /// Empty text.
  NSAttributedString() noexcept = default;
  /// The text with these attributes, or with none. Throws: as the init methods.
  explicit NSAttributedString(NSString* string, NSDictionary* attributes = nullptr);
  /// The text with the attributes of these runs, which are held and not copied: in order, without gaps, from its
  /// beginning to its end, and none with the same attributes as the one before.
  /// Throws: NSException (InvalidArgument) for a null string or null attributes, and when the runs do not fit the text.
  NSAttributedString(NSString* string, std::span<const Run> runs);

  /// Gives an allocated object this text, without attributes. Calls initWithStringAttributes.
  /// Result: the object to use in its place, here itself. Throws: NSException (InvalidArgument) for a null string.
  virtual Strong<NSAttributedString> initWithString(NSString* string);
  /// The same with attributes over the whole text; null for none.
  virtual Strong<NSAttributedString> initWithStringAttributes(NSString* string, NSDictionary* attributes);

  /// The text, immutable.
  [[nodiscard]] virtual Strong<NSString> string() const;
  /// How many UTF-16 units the text has.
  [[nodiscard]] std::uint64_t length() const { return string()->length(); }
  /// The attributes of the unit at `index`, and the longest part around it in which they are equal.
  /// Throws: NSException (Range) at or beyond the end.
  [[nodiscard]] virtual Run attributesAtIndex(std::uint64_t index) const;

  /// True for an attributed string with equal text and, unit by unit, equal attributes.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  /// Each part of the text with its attributes: "On air{NSLink = ...}".
  [[nodiscard]] Strong<NSString> description() const override;
  /// The attributed string itself.
  [[nodiscard]] Strong<NSObject> copy() const override;
  /// An NSMutableAttributedString with the same text and attributes.
  [[nodiscard]] Strong<NSObject> mutableCopy() const override;

  using Protocols = List<NSSecureCoding>;

 protected:
  /// Says what holds for the next `length` units behind the last run; equal neighbours become one run.
  void addRun(NSDictionary* attributes, std::uint64_t length);
  /// A plain attributed string with the text and attributes of now.
  [[nodiscard]] Strong<NSAttributedString> snapshot() const;

  Strong<NSString> string_;  // null for empty text
  std::vector<Run> runs_;    // in order, without gaps
};

/// Threads: one at a time.
class HAVRIN_EXPORT NSMutableAttributedString : public Object<NSMutableAttributedString, NSAttributedString> {
 public:
  NSMutableAttributedString() noexcept = default;
  explicit NSMutableAttributedString(NSString* string, NSDictionary* attributes = nullptr)
      : Object(string, attributes) {}
  NSMutableAttributedString(NSString* string, std::span<const Run> runs) : Object(string, runs) {}

  /// Adds text and attributes of another one. Throws: NSException (InvalidArgument) for null.
  virtual void appendAttributedString(const NSAttributedString* other);
  /// Replaces the attributes in `range`; null for none. Throws: NSException (Range) for a range beyond the text.
  virtual void setAttributes(NSDictionary* attributes, NSRange range);

  /// An NSAttributedString with the text and attributes of now.
  [[nodiscard]] Strong<NSObject> copy() const override;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSAttributedString>();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSMutableAttributedString>();

}  // namespace platform
}  // namespace havrin
