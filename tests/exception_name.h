// The name of the exception that a piece of a test throws.
#pragma once

#include <string>

#include <HavrinFoundation/platform/object/exception.h>
#include <gtest/gtest.h>

namespace havrin {

/// The name of the NSException that `body` throws, which must give a reason; "none" when it throws none.
template <class F>
std::string nameOf(F body) {
  try {
    body();
  } catch (const NSException& exception) {
    EXPECT_FALSE(exception.reason().empty());
    return exception.name();
  }
  return "none";
}

}  // namespace havrin
