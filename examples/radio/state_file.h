// SPDX-License-Identifier: Apache-2.0
// A file that is replaced as a whole or not at all, and that is set aside, never thrown away, when it is damaged.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace radio {

class StateFile {
 public:
  /// Files beyond this size, 16 MiB, are not read.
  static constexpr std::size_t kLargest = std::size_t{16} << 20;

  /// The file at `path`, which need not be there. Of a symbolic link, the file that it leads to.
  explicit StateFile(const std::string& path);

  [[nodiscard]] const std::string& path() const { return path_; }

  struct Contents {
    enum class Found { nothing, bytes, tooMany, unreadable } found = Found::nothing;
    std::vector<std::byte> bytes;
    std::string problem;  // why it is unreadable
  };
  [[nodiscard]] Contents read() const;

  struct Change {
    std::vector<std::byte> bytes;  // to be put in place of what is there
    std::string problem;           // not empty: nothing is changed, and why
  };
  /// Puts what `change` makes of the contents in their place, and makes the folders on the way. Others that update the
  /// file wait meanwhile, by a lock on "<path>.lock", which stays there, empty. Other readers, also after a crash, find
  /// the old bytes or the new ones. Result: empty, or what went wrong; then the old ones are still there.
  [[nodiscard]] std::string update(const std::function<Change(const Contents&)>& change) const;

  /// Renames the file to "<path>.damaged", or to "<path>.damaged.2" and so on where that name is taken.
  /// Result: the new path; empty when it could not be renamed.
  [[nodiscard]] std::string setAside() const;

 private:
  [[nodiscard]] std::string replace(std::span<const std::byte> bytes) const;

  std::string path_;
};

}  // namespace radio
