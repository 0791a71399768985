// SPDX-License-Identifier: Apache-2.0
// What methods throw about their arguments, with receiver and selector in the reason. For the project's own sources.
#pragma once

#include <HavrinFoundation/platform/base/range.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/object.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// "-[NSArray select:]", or "+[NSUUID zero]" for a metaclass; the class is the one that the program sees.
[[nodiscard]] std::string methodName(const ClassObject& cls, std::string_view selector);

/// Throws NSException (Range): "-[NSArray objectAtIndex:]: index 9 beyond count 3".
[[noreturn]] void throwIndexBeyond(const NSObject& receiver, std::string_view selector, std::uint64_t index,
                                   std::uint64_t count);
/// Throws NSException (Range): "-[NSArray subarrayWithRange:]: range {2, 9} beyond count 3".
[[noreturn]] void throwRangeBeyond(const NSObject& receiver, std::string_view selector, NSRange range,
                                   std::uint64_t count);
/// Throws NSException (InvalidArgument): "-[NSMutableArray addObject:]: the object is null".
[[noreturn]] HAVRIN_EXPORT void throwNullArgument(const NSObject& receiver, std::string_view selector,
                                                  std::string_view argument);

/// True when `range` lies within `count` elements.
[[nodiscard]] constexpr bool isWithin(NSRange range, std::uint64_t count) {
  return range.location <= count && range.length <= count - range.location;
}

}  // namespace platform
}  // namespace havrin
