// SPDX-License-Identifier: Apache-2.0
// Reading stations from a file.
//
//   JSON                       {"stations": [...]} or [...]
//   JSON lines                 one station a line; files whose name ends in ".jsonl", or whose first line is a station
//   property lists             as JSON, in the XML or the binary form
#pragma once

#include <HavrinFoundation/platform/foundation/array.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

namespace radio {

/// What a file holds.
class StationFile : public havrin::Object<StationFile, havrin::NSObject> {
 public:
  havrin::Strong<havrin::NSArray> stations;  // of Station
  std::vector<std::string> skipped;  // for each entry left out: file, entry, field, what was expected, what came
  std::string problem;               // not empty: the file could not be read at all
};

/// The stations of the file at `path`, or of standard input for "-". Counts the entries it has decoded in `entries`.
/// Threads: any.
havrin::Strong<StationFile> readStations(const std::string& path, std::atomic<std::size_t>& entries);

}  // namespace radio
