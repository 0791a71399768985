// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/index_set.h>

#include <HavrinFoundation/platform/foundation/range_end.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/string.h>

#include <algorithm>
#include <string>
#include <utility>

namespace havrin {
inline namespace platform {

namespace {

// The first of ascending ranges that ends beyond `index`: the one that holds it, or the next.
std::span<const NSRange>::iterator rangeAt(std::span<const NSRange> ranges, std::uint64_t index) {
  return std::upper_bound(ranges.begin(), ranges.end(), index,
                          [](std::uint64_t value, const NSRange& range) { return value < endOf(range); });
}

}  // namespace

NSIndexSet::NSIndexSet(std::vector<NSRange> ranges) : ranges_(std::move(ranges)) {
  for (const NSRange& range : ranges_) {
    if (range.length > kNotFound || range.location > kNotFound - range.length) {
      throw NSException(NSRangeException, "NSIndexSet: the range {" + std::to_string(range.location) + ", " +
                                              std::to_string(range.length) + "} has indexes beyond 2^63 - 2");
    }
  }
  const auto byLocation = [](const NSRange& a, const NSRange& b) { return a.location < b.location; };
  if (!std::is_sorted(ranges_.begin(), ranges_.end(), byLocation)) {
    std::sort(ranges_.begin(), ranges_.end(), byLocation);
  }
  // Ranges that touch become one, so that equal sets have equal ranges.
  std::size_t kept = 0;
  for (const NSRange range : ranges_) {
    if (range.length == 0) continue;
    if (kept != 0 && range.location <= endOf(ranges_[kept - 1])) {
      NSRange& last = ranges_[kept - 1];
      last.length = std::max(endOf(last), endOf(range)) - last.location;
    } else {
      ranges_[kept++] = range;
    }
  }
  ranges_.resize(kept);
  for (const NSRange& range : ranges_) count_ += range.length;
}

std::uint64_t NSIndexSet::lastIndex() const { return ranges_.empty() ? kNotFound : endOf(ranges_.back()) - 1; }

bool NSIndexSet::containsIndex(std::uint64_t index) const {
  const auto range = rangeAt(ranges_, index);
  return range != ranges().end() && range->location <= index;
}

std::uint64_t NSIndexSet::indexGreaterThanIndex(std::uint64_t index) const {
  if (index >= kNotFound) return kNotFound;
  const auto range = rangeAt(ranges_, index + 1);
  return range == ranges().end() ? kNotFound : std::max(range->location, index + 1);
}

void NSIndexSet::enumerateIndexesUsingBlock(BlockView<void(std::uint64_t index, bool& stop)> block) const {
  const Strong<NSObject> hold(const_cast<NSIndexSet*>(this));
  bool stop = false;
  for (const NSRange& range : ranges_) {
    for (std::uint64_t index = range.location; index < endOf(range); ++index) {
      block(index, stop);
      if (stop) return;
    }
  }
}

bool NSIndexSet::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSIndexSet* set = cast<NSIndexSet>(other);
  return set && ranges_ == set->ranges_;
}

std::uint64_t NSIndexSet::hash() const { return (count_ * 31 + firstIndex()) * 31 + lastIndex(); }

Strong<NSString> NSIndexSet::description() const {
  std::string text = "(";
  for (const NSRange& range : ranges_) {
    if (text.size() > 1) text += ' ';
    text += std::to_string(range.location);
    if (range.length > 1) text += '-' + std::to_string(endOf(range) - 1);
  }
  return makeString(text + ")");
}

Strong<NSObject> NSIndexSet::copy() const { return const_cast<NSIndexSet*>(this); }

Strong<NSIndexSet> makeIndexSet(std::span<const std::uint64_t> indexes) {
  std::vector<NSRange> ranges;
  for (const std::uint64_t index : indexes) {
    if (index >= kNotFound) throw NSException(NSRangeException, "makeIndexSet: an index exceeds 2^63 - 2");
    appendIndex(ranges, index);
  }
  return make<NSIndexSet>(std::move(ranges));
}

Strong<NSIndexSet> makeIndexSet(std::initializer_list<std::uint64_t> indexes) {
  return makeIndexSet(std::span<const std::uint64_t>(indexes.begin(), indexes.size()));
}

Strong<NSIndexSet> makeIndexSet(NSRange range) { return make<NSIndexSet>(std::vector<NSRange>{range}); }

template ClassObject* buildClass<NSIndexSet>();

}  // namespace platform
}  // namespace havrin
