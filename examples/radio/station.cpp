// SPDX-License-Identifier: Apache-2.0
#include "station.h"

#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/platform/net/url.h>

namespace radio {

using namespace havrin;

Decoded<StationEntry> StationEntry::fromDecoder(Decoder& decoder) {
  auto entry = decodeFields<StationEntry>(decoder);
  if (!entry) return entry;
  if (!fromHexString<UIColor>(entry->genreColour)) {
    return DecodingError::dataCorrupted("no colour code: \"" + entry->genreColour + "\"");
  }
  if (!URL::fromString(entry->link)) return DecodingError::dataCorrupted("no link: \"" + entry->link + "\"");
  return entry;
}

Station::Station(const StationEntry& entry)
    : entry_(entry),
      colour_(fromHexString<UIColor>(entry.genreColour)),
      song_(makeString(entry.song)),
      listeners_(entry.listeners),
      favourite_(entry.favourite) {}

}  // namespace radio
