#include <HavrinFoundation/platform/object/exception.h>

#include <HavrinFoundation/platform/object/block.h>

namespace havrin::inline platform {

NSException::NSException(std::string_view name, std::string_view reason)
    : name_(name), reason_(reason), text_(name_ + ": " + reason_) {}

NSException::~NSException() = default;

void throwNullBlock() { throw NSException(NSInvalidArgumentException, "a null block was called"); }

void throwUncopiableBlock() {
  throw NSException(NSInvalidArgumentException, "a callable that cannot be copied was to be kept as a block");
}

}  // namespace havrin::inline platform
