// SPDX-License-Identifier: Apache-2.0
// Reads station files in the background, one after the other.
#pragma once

#include <HavrinFoundation/platform/foundation/array.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace radio {

struct LoadedStations {
  havrin::Strong<havrin::NSArray> stations;  // of Station, of all files
  std::vector<std::string> skipped;          // as in StationFile
  std::string problem;                       // not empty: the first file that could not be read, and why
};

/// Main queue only.
class Loading {
 public:
  /// Starts to read.
  explicit Loading(const std::vector<std::string>& paths);

  /// True once the main queue has been given the stations.
  [[nodiscard]] bool isDone() const { return state_->isDone; }
  /// How many entries have been decoded so far.
  [[nodiscard]] std::size_t entries() const { return state_->entries; }
  /// When it is done, once.
  [[nodiscard]] LoadedStations take() { return std::move(state_->loaded); }

 private:
  struct State {
    std::atomic<std::size_t> entries = 0;
    bool isDone = false;
    LoadedStations loaded;
  };

  std::shared_ptr<State> state_ = std::make_shared<State>();  // also of the work that goes on
};

/// Waits for the stations, and shows on standard error how far they are when it takes longer than half a second.
LoadedStations loadStations(const std::vector<std::string>& paths);

}  // namespace radio
