// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/file_bytes.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrin {
inline namespace platform {
namespace {

class File {
 public:
  // Non-blocking, so that opening a pipe without a writer does not wait.
  explicit File(const std::string& path) : descriptor_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (descriptor_ >= 0) close(descriptor_);
  }

  [[nodiscard]] bool isRegular() const {
    struct stat status;
    return descriptor_ >= 0 && fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
  }

  // How many bytes came; 0 at the end, empty when they could not be read.
  [[nodiscard]] std::optional<std::size_t> read(std::byte* bytes, std::size_t size) const {
    ssize_t count;
    do count = ::read(descriptor_, bytes, size);
    while (count < 0 && errno == EINTR);
    return count < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(count));
  }

 private:
  int descriptor_;
};

}  // namespace

std::optional<std::vector<std::byte>> fileBytes(const std::string& path, std::size_t largest) {
  const File file(path);
  if (!file.isRegular()) return std::nullopt;
  constexpr std::size_t kStep = 16 * 1024;
  std::vector<std::byte> bytes;
  for (;;) {
    const std::size_t size = bytes.size();
    bytes.resize(size + kStep);
    const auto count = file.read(bytes.data() + size, kStep);
    if (!count || size + *count > largest) return std::nullopt;
    bytes.resize(size + *count);
    if (*count == 0) return bytes;
  }
}

}  // namespace platform
}  // namespace havrin
