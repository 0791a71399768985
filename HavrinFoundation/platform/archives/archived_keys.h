// The keys of objects' own values, as they stand in an archive. Internal to archives/.
#pragma once

#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// A key that begins with "$", as the archive's own do, gets one more.
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
