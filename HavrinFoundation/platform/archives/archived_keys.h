// SPDX-License-Identifier: Apache-2.0
// The escaping of keys in an archive. Internal to archives/.
#pragma once

#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// A key of the application as stored in an archive: one that begins with "$", like the archive's own, gets another
/// "$".
class ArchivedKey {
 public:
  explicit ArchivedKey(std::string_view key) : key_(key) {
    if (key.starts_with('$')) key_ = text_ = '$' + std::string(key);
  }
  ArchivedKey(const ArchivedKey&) = delete;
  ArchivedKey& operator=(const ArchivedKey&) = delete;
  operator std::string_view() const { return key_; }

 private:
  std::string text_;
  std::string_view key_;
};

}  // namespace platform
}  // namespace havrin
