// SPDX-License-Identifier: Apache-2.0
// What observing asks a class about a key.
#pragma once

#include <HavrinFoundation/platform/object/class.h>
#include <HavrinFoundation/platform/observing/key_rows.h>

#include <memory>
#include <vector>

namespace havrin {
inline namespace platform {

struct KeyFacts {
  using Paths = std::vector<KeyPath>;

  Selector setter;                         // set<Key>:, when anything bears that name
  bool isAutomatic;                        // the setter notifies
  std::shared_ptr<const Paths> affecting;  // paths whose change changes this key; null for none

  [[nodiscard]] bool isAlone() const { return !affecting; }
  friend bool operator==(const KeyFacts&, const KeyFacts&) = default;
};

/// Asks the class's own methods, once for each class and key that it has a method for.
/// Throws: what those methods throw.
[[nodiscard]] KeyFacts factsForKey(const ClassObject& shown, NSString& key);

}  // namespace platform
}  // namespace havrin
