// SPDX-License-Identifier: Apache-2.0
// The dictionary that describes a change to observers: four fixed slots instead of a table.
//
//   change->objectForKey(NSKeyValueChangeKindKey)       NSNumber, 1 to 4
//   change->adding(kPath, path)                         the same change with one entry more, under a key of the caller's
//
// It is an NSDictionary in every way: `count`, `allKeys`, equality, enumeration, `mutableCopy`.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>
#include <HavrinFoundation/platform/observing/keyed_value.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// Immutable. A value that a getter returned as a number is boxed at each look-up.
/// Cost: one allocation, and a count for each value that is an object. Threads: any.
class HAVRIN_EXPORT NSKeyValueChangeDictionary final : public Object<NSKeyValueChangeDictionary, NSDictionary> {
 public:
  struct Values {
    NSKeyValueChange kind = NSKeyValueChange::setting;
    bool prior = false;
    KeyedValue newValue;  // null: no such entry
    KeyedValue oldValue;
    KeyedValue indexes;
  };
  explicit NSKeyValueChangeDictionary(Values values) noexcept : values_(std::move(values)) {}
  ~NSKeyValueChangeDictionary() override;

  [[nodiscard]] std::uint64_t count() const override;
  [[nodiscard]] Strong<NSObject> objectForKey(const NSObject* key) const override;
  [[nodiscard]] Strong<NSArray> allKeys() const override;
  [[nodiscard]] Strong<NSObject> mutableCopy() const override;

  /// This change with the entry `key`, which is not one of the change's own keys and lives as long as the process.
  [[nodiscard]] Strong<NSDictionary> adding(NSString* key, Strong<NSObject> value) const;

  /// A setting without values: the one object for all of them.
  [[nodiscard]] static NSKeyValueChangeDictionary* plainSetting();

 private:
  // Calls `body(key, value)` for each entry until it answers true.
  template <class Body>
  bool any(Body body) const;

  Values values_;
  NSString* extraKey_ = nullptr;
  KeyedValue extraValue_;
};

}  // namespace platform
}  // namespace havrin
