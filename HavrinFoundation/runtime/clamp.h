// SPDX-License-Identifier: Apache-2.0
// A value pinned into a range.
//
//   clamp(15, ClosedRange{0, 10})    10
//   clamp(15, Range{0, 10})          9: the upper bound is excluded
//   clamp(8, Range{5, 5})            5: an empty range gives its bound
//
// There is no message form.
#pragma once

#include <HavrinFoundation/platform/base/range.h>

#include <concepts>
#include <iterator>

namespace havrin {

/// The nearest value to `value` that lies in `range`. Only "<" and ">" of the type are asked: a not-a-number comes back
/// as it is, and strings compare as std::string does, which is the order of their scalars in well-formed UTF-8.
template <class Type>
[[nodiscard]] constexpr Type clamp(const Type& value, const ClosedRange<Type>& range) {
  if (value < range.lowerBound) return range.lowerBound;
  if (value > range.upperBound) return range.upperBound;
  return value;
}

/// A type that steps by whole numbers: an integer, or a position in a sequence.
template <class Type>
concept Stepping = (std::integral<Type> && !std::same_as<Type, bool>) || std::random_access_iterator<Type>;

/// The nearest value to `value` that lies in `range`, of which the last is one step below the upper bound. An empty
/// range has none: the result is then its bound, which is not in it.
template <Stepping Type>
[[nodiscard]] constexpr Type clamp(const Type& value, const Range<Type>& range) {
  if (range.isEmpty()) return range.upperBound;  // first: below the lowest integer there is no step back
  if (value < range.lowerBound) return range.lowerBound;
  const Type last = static_cast<Type>(range.upperBound - 1);
  if (value > last) return last;
  return value;
}

}  // namespace havrin
