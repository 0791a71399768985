// SPDX-License-Identifier: Apache-2.0
// Comparing and describing collections that are nested to any depth, in bounded stack. For the project's own sources.
#pragma once

#include <HavrinFoundation/platform/object/object.h>

namespace havrin {
inline namespace platform {

/// Counts the collections that this thread is comparing or describing, each inside the one before.
class CollectionDepth {
 public:
  CollectionDepth() noexcept;
  CollectionDepth(const CollectionDepth&) = delete;
  CollectionDepth& operator=(const CollectionDepth&) = delete;
  ~CollectionDepth();

  /// Whether this one is nested too deep for recursion: it is compared by `equalCollections`, and described as "...".
  [[nodiscard]] bool isTooDeep() const noexcept;
};

/// Whether two collections of the same kind are equal. A pair that is met again inside itself counts as equal.
/// Cost: stack is constant for the layer's own collections; what classes of the application compare is theirs.
[[nodiscard]] bool equalCollections(const NSObject& mine, const NSObject& theirs);

}  // namespace platform
}  // namespace havrin
