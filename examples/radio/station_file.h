// SPDX-License-Identifier: Apache-2.0
// Reading stations from a JSON file: {"stations": [...]}.
#pragma once

#include <HavrinFoundation/platform/foundation/array.h>

#include <string>
#include <vector>

namespace radio {

struct LoadedStations {
  havrin::Strong<havrin::NSArray> stations;  // of Station
  std::vector<std::string> skipped;          // why each entry was left out
  std::string problem;                       // not empty: the file could not be read at all
};

LoadedStations loadStations(const std::string& path);

}  // namespace radio
