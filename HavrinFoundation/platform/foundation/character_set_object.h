// SPDX-License-Identifier: Apache-2.0
// NSCharacterSet and NSMutableCharacterSet: a set of Unicode scalars as an object.
//
//   Strong<NSCharacterSet> vowels = makeCharacterSet(CharacterSet("aeiou"));
//   vowels->characterSet().contains(U'e')                  true: the value, with which all is asked and searched
//   makeString("xyze")->rangeOfCharacterFromSet(vowels->characterSet())    {3, 1}
//   vowels->isEqual(makeCharacterSet(CharacterSet("uoiea")))   true: by membership
//
// The value and the object convert into each other without copying members. A subclass that overrides `characterSet`
// works everywhere a set does.
// Left out: what the value leaves out (character_set.h), and members on the object that the value has.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/unicode/character_set.h>

#include <cstdint>
#include <utility>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSCharacterSet : public Object<NSCharacterSet, NSObject> {
 public:
  using Leaf = NSCharacterSet;

  /// The empty set.
  NSCharacterSet() noexcept = default;
  explicit NSCharacterSet(CharacterSet set) noexcept : set_(std::move(set)) {}

  /// The members, as a value.
  [[nodiscard]] virtual CharacterSet characterSet() const { return set_; }

  /// Whether a scalar is a member; a surrogate is none.
  [[nodiscard]] bool longCharacterIsMember(char32_t scalar) const { return characterSet().contains(scalar); }
  /// A set of all scalars that are not members.
  [[nodiscard]] Strong<NSCharacterSet> invertedSet() const;

  /// True for a set with the same members, mutable or not.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  /// The set itself.
  [[nodiscard]] Strong<NSObject> copy() const override;
  /// An NSMutableCharacterSet with the same members.
  [[nodiscard]] Strong<NSObject> mutableCopy() const override;

 protected:
  CharacterSet set_;
};

/// A set that changes. Threads: one at a time.
class HAVRIN_EXPORT NSMutableCharacterSet : public Object<NSMutableCharacterSet, NSCharacterSet> {
 public:
  NSMutableCharacterSet() noexcept = default;
  explicit NSMutableCharacterSet(CharacterSet set) : Object(std::move(set)) {}

  virtual void setCharacterSet(CharacterSet set) { set_ = std::move(set); }

  /// An NSCharacterSet with the members of now.
  [[nodiscard]] Strong<NSObject> copy() const override;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSCharacterSet>();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSMutableCharacterSet>();

/// The object for a value. Cost: one allocation; the members are shared.
[[nodiscard]] HAVRIN_EXPORT Strong<NSCharacterSet> makeCharacterSet(CharacterSet set);

}  // namespace platform
}  // namespace havrin
