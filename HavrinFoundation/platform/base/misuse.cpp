// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/misuse.h>

#include <cstdlib>
#include <sys/uio.h>
#include <unistd.h>

namespace havrin {
inline namespace platform {
namespace {

iovec part(std::string_view text) { return {const_cast<char*>(text.data()), text.size()}; }

}  // namespace

void abortOnMisuse(std::string_view what, std::string_view why) {
  const iovec line[] = {part(what), part(": "), part(why), part("\n")};
  [[maybe_unused]] const ssize_t written = writev(STDERR_FILENO, line, 4);
  std::abort();
}

}  // namespace platform
}  // namespace havrin
