// SPDX-License-Identifier: Apache-2.0
#include "state_file.h"

#include "system_error.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace radio {

namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] bool isOpen() const { return number_ >= 0; }
  bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

bool writeAll(int file, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

// The new name of a file outlives a crash only when the folder has been written too.
// Some file systems cannot, and have done what they can.
void writeFolder(const std::filesystem::path& folder) {
  const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor.isOpen()) (void)fsync(descriptor.number());
}

std::string resolved(const std::string& path) {
  std::error_code error;
  const auto target = std::filesystem::weakly_canonical(path, error);
  return error ? path : target.string();
}

}  // namespace

StateFile::StateFile(const std::string& path) : path_(resolved(path)) {}

StateFile::Contents StateFile::read() const {
  using Found = Contents::Found;
  // A pipe must not make the board wait.
  const Descriptor file(::open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!file.isOpen()) return errno == ENOENT ? Contents() : Contents{Found::unreadable, {}, errorText()};
  struct stat facts {};
  if (fstat(file.number(), &facts) != 0) return {Found::unreadable, {}, errorText()};
  if (!S_ISREG(facts.st_mode)) return {Found::unreadable, {}, "not a regular file"};
  Contents contents{Found::bytes, {}, {}};
  while (contents.bytes.size() <= kLargest) {
    std::byte chunk[1 << 14];
    const ssize_t count = ::read(file.number(), chunk, sizeof chunk);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return {Found::unreadable, {}, errorText()};
    if (count == 0) return contents;
    contents.bytes.insert(contents.bytes.end(), chunk, chunk + count);
  }
  return {Found::tooMany, {}, {}};
}

std::string StateFile::update(const std::function<Change(const Contents&)>& change) const {
  const std::filesystem::path folder = std::filesystem::path(path_).parent_path();
  std::error_code error;
  if (!folder.empty()) std::filesystem::create_directories(folder, error);
  if (error) return error.message();
  const Descriptor lock(::open((path_ + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!lock.isOpen()) return errorText();
  while (flock(lock.number(), LOCK_EX) != 0) {
    if (errno != EINTR) return errorText();
  }
  const Change changed = change(read());
  return changed.problem.empty() ? replace(changed.bytes) : changed.problem;
}

std::string StateFile::replace(std::span<const std::byte> bytes) const {
  const std::filesystem::path folder = std::filesystem::path(path_).parent_path();
  std::string beside = path_ + ".XXXXXX";
  Descriptor file(mkostemp(beside.data(), O_CLOEXEC));
  if (!file.isOpen()) return errorText();
  if (!writeAll(file.number(), bytes) || fsync(file.number()) != 0 || !file.close() ||
      std::rename(beside.c_str(), path_.c_str()) != 0) {
    std::string problem = errorText();
    unlink(beside.c_str());
    return problem;
  }
  writeFolder(folder.empty() ? "." : folder);
  return {};
}

std::string StateFile::setAside() const {
  constexpr int kNames = 1000;
  for (int i = 1; i <= kNames; ++i) {
    std::string name = path_ + ".damaged" + (i > 1 ? "." + std::to_string(i) : "");
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) return name;
    if (errno != EEXIST) break;
  }
  return {};
}

}  // namespace radio
