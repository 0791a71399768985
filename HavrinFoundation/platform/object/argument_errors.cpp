// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/argument_errors.h>

#include <HavrinFoundation/platform/object/class.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <string>

namespace havrin {
inline namespace platform {

std::string methodName(const ClassObject& cls, std::string_view selector) {
  std::string name = cls.isMetaclass() ? "+[" : "-[";
  return name.append(cls.shown()->name()).append(" ").append(selector).append("]");
}

void throwIndexBeyond(const NSObject& receiver, std::string_view selector, std::uint64_t index, std::uint64_t count) {
  throw NSException(
      NSRangeException,
      methodReason(receiver, selector, "index " + std::to_string(index) + " beyond count " + std::to_string(count)));
}

void throwRangeBeyond(const NSObject& receiver, std::string_view selector, NSRange range, std::uint64_t count) {
  throw NSException(NSRangeException,
                    methodReason(receiver, selector,
                                 "range {" + std::to_string(range.location) + ", " + std::to_string(range.length) +
                                     "} beyond count " + std::to_string(count)));
}

void throwNullArgument(const NSObject& receiver, std::string_view selector, std::string_view argument) {
  throw NSException(NSInvalidArgumentException,
                    methodReason(receiver, selector, "the " + std::string(argument) + " is null"));
}

}  // namespace platform
}  // namespace havrin
