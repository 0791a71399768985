// SPDX-License-Identifier: Apache-2.0
// The variables that dates depend on, set for the length of a test.
#pragma once

#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace havrin::testing {

/// TZ and the locale variables as given, null meaning absent; restored when it is destroyed.
class PinnedEnvironment {
 public:
  explicit PinnedEnvironment(const char* zone = nullptr, const char* language = nullptr) {
    for (std::size_t i = 0; i < kNames.size(); ++i) {
      const char* value = std::getenv(kNames[i]);
      if (value != nullptr) former_[i] = value;
      set(kNames[i], nullptr);
    }
    set("TZ", zone);
    set("LANG", language);
  }
  ~PinnedEnvironment() {
    for (std::size_t i = 0; i < kNames.size(); ++i) set(kNames[i], former_[i] ? former_[i]->c_str() : nullptr);
  }
  PinnedEnvironment(const PinnedEnvironment&) = delete;
  PinnedEnvironment& operator=(const PinnedEnvironment&) = delete;

  static void set(const char* name, const char* value) {
    if (value == nullptr) {
      unsetenv(name);
    } else {
      setenv(name, value, 1);
    }
  }

 private:
  static constexpr std::array<const char*, 4> kNames = {"TZ", "LC_ALL", "LC_TIME", "LANG"};
  std::array<std::optional<std::string>, 4> former_;
};

}  // namespace havrin::testing
