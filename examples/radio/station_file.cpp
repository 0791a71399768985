// SPDX-License-Identifier: Apache-2.0
#include "station_file.h"

#include "station.h"
#include <HavrinFoundation/platform/decoding/json_decoder.h>
#include <HavrinFoundation/runtime/lenient_decoding.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <system_error>

namespace radio {

using namespace havrin;

LoadedStations loadStations(const std::string& path) {
  LoadedStations loaded;
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    loaded.problem = path + ": " + std::generic_category().message(errno);
    return loaded;
  }
  // Not by iterators: those throw where a folder opens as a file does and cannot be read.
  std::string text;
  std::array<char, 1 << 16> part;
  do {
    file.read(part.data(), part.size());
    text.append(part.data(), static_cast<std::size_t>(file.gcount()));
  } while (file);
  if (file.bad()) {
    loaded.problem = path + ": " + std::generic_category().message(errno);
    return loaded;
  }
  try {
    const auto entries = JSONDecoder().read(text, [&loaded](Decoder& document) {
      return decodeArraySkippingInvalidElements<StationEntry>(
          document.container(), "stations",
          [&loaded](const SkippedElement& skipped) { loaded.skipped.emplace_back(skipped.reason.what()); });
    });
    ArrayBuilder stations(entries.size());
    for (const StationEntry& entry : entries) stations.add(make<Station>(entry));
    loaded.stations = stations.finish();
  } catch (const DecodingError& error) {
    loaded.problem = path + ": " + error.what();
  }
  return loaded;
}

}  // namespace radio
