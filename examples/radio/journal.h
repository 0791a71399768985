// SPDX-License-Identifier: Apache-2.0
// Log lines for --verbose, on standard error. While the board is drawn they are held back.
#pragma once

#include <HavrinFoundation/frame/locked.h>
#include <HavrinFoundation/platform/log/log.h>

#include <string>
#include <utility>
#include <vector>

namespace radio {

/// Threads: any.
class Journal {
 public:
  explicit Journal(bool isOn) : isOn_(isOn) {}

  /// Writes a line under a category such as "stations", or keeps it until `release`.
  void note(const char* category, std::string text);
  /// Keeps lines from now on, the first thousand of them.
  void hold();
  /// Writes what was kept.
  void release();

 private:
  struct Held {
    bool isHolding = false;
    std::vector<std::pair<havrin::os_log_t, std::string>> lines;
  };

  const bool isOn_;
  havrin::Locked<Held> held_{Held()};
};

}  // namespace radio
