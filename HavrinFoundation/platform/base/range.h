// SPDX-License-Identifier: Apache-2.0
// Ranges of values, and ranges of UTF-16 units in strings.
//
//   Range<int>{2, 5}          2, 3, 4; empty when both bounds are equal
//   ClosedRange<int>{2, 5}    2, 3, 4, 5; never empty
//   NSRange{0, 2}             the first two UTF-16 units of a string
//
// Left out: ranges without a bound, steps, and arithmetic on NSRange (unions, intersections, text form).
#pragma once

#include <concepts>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace havrin {

namespace detail {

[[noreturn]] inline void abortInvalidRange() noexcept {
  std::fputs("havrin: a range needs lowerBound <= upperBound\n", stderr);
  std::abort();
}

}  // namespace detail

inline namespace platform {

/// The half-open range from `lowerBound` up to, and without, `upperBound`. A range whose lower bound is not less than
/// or equal to its upper bound (a not-a-number bound included) ends the process; in a constant expression it does not
/// compile.
template <std::totally_ordered Type>
struct Range {
  constexpr Range(Type lower, Type upper) : lowerBound(std::move(lower)), upperBound(std::move(upper)) {
    if (!(lowerBound <= upperBound)) detail::abortInvalidRange();
  }

  [[nodiscard]] constexpr bool isEmpty() const { return lowerBound == upperBound; }
  [[nodiscard]] constexpr bool contains(const Type& value) const { return lowerBound <= value && value < upperBound; }
  friend constexpr bool operator==(const Range&, const Range&) = default;

  Type lowerBound;
  Type upperBound;
};

/// The range from `lowerBound` to `upperBound`, both included. An invalid one ends the process, as for `Range`.
template <std::totally_ordered Type>
struct ClosedRange {
  constexpr ClosedRange(Type lower, Type upper) : lowerBound(std::move(lower)), upperBound(std::move(upper)) {
    if (!(lowerBound <= upperBound)) detail::abortInvalidRange();
  }

  [[nodiscard]] constexpr bool contains(const Type& value) const { return lowerBound <= value && value <= upperBound; }
  friend constexpr bool operator==(const ClosedRange&, const ClosedRange&) = default;

  Type lowerBound;
  Type upperBound;
};

/// The result of a search that finds nothing: 2^63 - 1.
inline constexpr std::uint64_t kNotFound = 0x7FFF'FFFF'FFFF'FFFF;

/// A range of UTF-16 units: where it begins and how many units it has. Nothing is checked.
struct NSRange {
  std::uint64_t location = 0;
  std::uint64_t length = 0;

  friend constexpr bool operator==(const NSRange&, const NSRange&) = default;
};

}  // namespace platform
}  // namespace havrin
