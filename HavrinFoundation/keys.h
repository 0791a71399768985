// SPDX-License-Identifier: Apache-2.0
// The value types as keys of the standard containers: std::hash for the unordered ones, an order for the others. Objects:
// object_keys.h. Not in the umbrella header: a file that uses it includes it.
//
//   std::unordered_map<URL, int> visits;
//   visits[*URL::fromString("https://h/a")] = 1;
//   std::hash<NSRange>()({0, 2}) == std::hash<NSRange>()({0, 2})          true
//   std::set<UUID> seen{UUID()};
//   UUID() < *UUID::fromString("00000000-0000-0000-0000-000000000001")    true
//
// Equal values have equal hashes. A hash is the same within one process only: it is not for files.
// UUID and Date have their hash, and Date its order, in their own headers.
// Left out: an order of links, components and colours, which have none of their own.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/base/uuid.h>
#include <HavrinFoundation/platform/graphics/color.h>
#include <HavrinFoundation/platform/net/url.h>
#include <HavrinFoundation/platform/net/url_components.h>
#include <HavrinFoundation/platform/time/calendar.h>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {

namespace detail {

/// The hash of several values in this order.
template <class... Type>
[[nodiscard]] std::size_t hashOf(const Type&... values) noexcept {
  std::uint64_t hash = 0;
  // The odd constant (2^64 divided by the golden ratio) spreads every value over all bits before the next is added.
  ((hash = ((hash << 23 | hash >> 41) ^ std::hash<Type>()(values)) * 0x9E37'79B9'7F4A'7C15), ...);
  return static_cast<std::size_t>(hash ^ hash >> 32);
}

}  // namespace detail

inline namespace platform {

/// The order of the bytes, which is that of the texts.
[[nodiscard]] constexpr std::strong_ordering operator<=>(const UUID& first, const UUID& second) {
  return first.bytes() <=> second.bytes();
}

/// The order of the days of one year.
[[nodiscard]] constexpr std::strong_ordering operator<=>(MonthAndDay first, MonthAndDay second) {
  const auto months = first.month <=> second.month;
  return months != 0 ? months : first.day <=> second.day;
}

/// The order of the locations; of ranges that begin together, the shorter one is first.
[[nodiscard]] constexpr std::strong_ordering operator<=>(const NSRange& first, const NSRange& second) {
  const auto locations = first.location <=> second.location;
  return locations != 0 ? locations : first.length <=> second.length;
}

}  // namespace platform
}  // namespace havrin

template <>
struct std::hash<havrin::URL> {
  // Links of one text from different bases are rare where links are keys.
  std::size_t operator()(const havrin::URL& url) const noexcept {
    return std::hash<std::string>()(url.relativeString());
  }
};

template <>
struct std::hash<havrin::URLQueryItem> {
  std::size_t operator()(const havrin::URLQueryItem& item) const {
    return havrin::detail::hashOf(item.name(), item.value());
  }
};

template <>
struct std::hash<havrin::NSRange> {
  std::size_t operator()(const havrin::NSRange& range) const noexcept {
    return havrin::detail::hashOf(range.location, range.length);
  }
};

template <class Type>
struct std::hash<havrin::Range<Type>> {
  std::size_t operator()(const havrin::Range<Type>& range) const {
    return havrin::detail::hashOf(range.lowerBound, range.upperBound);
  }
};

template <class Type>
struct std::hash<havrin::ClosedRange<Type>> {
  std::size_t operator()(const havrin::ClosedRange<Type>& range) const {
    return havrin::detail::hashOf(range.lowerBound, range.upperBound);
  }
};

template <>
struct std::hash<havrin::MonthAndDay> {
  std::size_t operator()(havrin::MonthAndDay value) const noexcept {
    return havrin::detail::hashOf(value.month, value.day);
  }
};

template <>
struct std::hash<havrin::DateComponents> {
  std::size_t operator()(const havrin::DateComponents& value) const noexcept {
    return havrin::detail::hashOf(value.era, value.year, value.month, value.day, value.hour, value.minute, value.second,
                                  value.weekday);
  }
};

template <>
struct std::hash<havrin::CGColorSpace> {
  std::size_t operator()(const havrin::CGColorSpace& space) const noexcept {
    return havrin::detail::hashOf(space.model, space.name);
  }
};

template <>
struct std::hash<havrin::CGColor> {
  std::size_t operator()(const havrin::CGColor& color) const noexcept {
    std::size_t result = color.colorSpace() ? std::hash<havrin::CGColorSpace>()(*color.colorSpace()) : 0;
    for (const double component : color.components()) result = havrin::detail::hashOf(result, component);
    return result;
  }
};
