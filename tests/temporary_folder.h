// SPDX-License-Identifier: Apache-2.0
// A folder of a test's own, gone with it.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <unistd.h>

namespace havrin {

/// What a file holds; empty where there is none.
inline std::string bytesOfFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = testing::TempDir() + "havrin.XXXXXX";
    if (!mkdtemp(name.data())) throw std::filesystem::filesystem_error("mkdtemp", name, std::error_code());
    path_ = std::filesystem::canonical(name);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  void write(const std::string& name, std::string_view text) const {
    std::ofstream(path_ / name, std::ios::binary | std::ios::trunc) << text;
  }
  void write(const std::string& name, std::span<const std::byte> bytes) const {
    write(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
  }

 private:
  std::filesystem::path path_;
};

}  // namespace havrin
