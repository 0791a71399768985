// SPDX-License-Identifier: Apache-2.0
// NSIndexSet: a set of positions, kept as ascending ranges.
//
//   const auto places = makeIndexSet({2, 0, 2});
//   places->count()                           2
//   places->firstIndex()                      0
//   places->ranges()                          {0, 1} {2, 1}
//   places->isEqual(makeIndexSet({0, 2}))     true
//
// Left out: mutable index sets, enumeration in reverse or within a range, index paths.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/members.h>

#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

namespace havrin {
inline namespace platform {

class NSString;

/// Immutable. Cost: a search takes the logarithm of the number of ranges.
class HAVRIN_EXPORT NSIndexSet : public Object<NSIndexSet, NSObject> {
 public:
  using Leaf = NSIndexSet;

  /// The empty set.
  NSIndexSet() = default;
  /// All indexes of all ranges, which may overlap and be in any order.
  /// Throws: NSException (Range) when an index is `kNotFound` or above.
  explicit NSIndexSet(std::vector<NSRange> ranges);

  [[nodiscard]] std::uint64_t count() const { return count_; }
  /// The lowest and the highest index; `kNotFound` if the set is empty.
  [[nodiscard]] std::uint64_t firstIndex() const { return ranges_.empty() ? kNotFound : ranges_.front().location; }
  [[nodiscard]] std::uint64_t lastIndex() const;
  [[nodiscard]] bool containsIndex(std::uint64_t index) const;
  /// The lowest index above `index`; `kNotFound` when there is none.
  [[nodiscard]] std::uint64_t indexGreaterThanIndex(std::uint64_t index) const;
  /// Calls the block with every index, ascending, until it sets `stop`.
  void enumerateIndexesUsingBlock(BlockView<void(std::uint64_t index, bool& stop)> block) const;
  /// The indexes as ranges: ascending, none empty, none touching the next.
  [[nodiscard]] std::span<const NSRange> ranges() const { return {ranges_.data(), ranges_.size()}; }

  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  [[nodiscard]] Strong<NSString> description() const override;
  /// The set itself.
  [[nodiscard]] Strong<NSObject> copy() const override;

 private:
  std::vector<NSRange> ranges_;
  std::uint64_t count_ = 0;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSIndexSet>();

/// A set of these indexes, in any order, repeated or not.
[[nodiscard]] HAVRIN_EXPORT Strong<NSIndexSet> makeIndexSet(std::span<const std::uint64_t> indexes);
[[nodiscard]] HAVRIN_EXPORT Strong<NSIndexSet> makeIndexSet(std::initializer_list<std::uint64_t> indexes);
[[nodiscard]] HAVRIN_EXPORT Strong<NSIndexSet> makeIndexSet(NSRange range);

/// Appends `index` to ascending ranges: extends the last one if it is adjacent, else adds a range.
inline void appendIndex(std::vector<NSRange>& ranges, std::uint64_t index) {
  if (!ranges.empty() && ranges.back().location + ranges.back().length == index) {
    ++ranges.back().length;
  } else {
    ranges.push_back({index, 1});
  }
}

}  // namespace platform
}  // namespace havrin
