// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/exception.h>

#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/block.h>
#include <HavrinFoundation/platform/object/class.h>

namespace havrin {
inline namespace platform {

NSException::NSException(std::string_view name, std::string_view reason)
    : name_(name), reason_(reason), text_(name_ + ": " + reason_) {}

NSException::~NSException() = default;

std::string methodReason(const NSObject& receiver, std::string_view selector, std::string_view problem) {
  return methodName(*dispatchClass(&receiver), selector).append(": ").append(problem);
}

void throwNullBlock() { throw NSException(NSInvalidArgumentException, "a null block was called"); }

void throwUncopiableBlock() { throw NSException(NSInvalidArgumentException, "a block that is kept must be copyable"); }

}  // namespace platform
}  // namespace havrin
