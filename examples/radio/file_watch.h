// SPDX-License-Identifier: Apache-2.0
// Notices that files have changed, by their time stamps, sizes and identities: this works on every file system, and for
// files that are replaced as a whole.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace radio {

class FileWatch {
 public:
  /// Files that are not regular ones, as standard input, never change.
  explicit FileWatch(std::vector<std::string> paths);

  /// True once after a change: when two looks in a row see the same new state, so that a file is not read half-written.
  bool look();

 private:
  struct Stamp {
    std::int64_t seconds, nanoseconds, size;
    std::uint64_t file;
    bool operator==(const Stamp&) const = default;
  };
  using Stamps = std::vector<std::optional<Stamp>>;
  [[nodiscard]] Stamps stamps() const;

  std::vector<std::string> paths_;
  Stamps settled_;
  Stamps last_;
};

}  // namespace radio
