// SPDX-License-Identifier: Apache-2.0
#include "station.h"

#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/links/utm_parameters.h>
#include <HavrinFoundation/platform/net/url.h>

#include <any>
#include <atomic>
#include <string_view>

namespace radio {

using namespace havrin;

namespace {

Decoded<StationEntry> unusable(std::string_view field, std::string_view expected, std::string_view found) {
  Decoded<StationEntry> failed(DecodingError::unusable(expected, Found::string, found));
  failed.failure().prepend(field);
  return failed;
}

}  // namespace

Decoded<StationEntry> StationEntry::fromDecoder(Decoder& decoder) {
  if (const auto counter = decoder.userInfo().find(kDecodedEntries); counter != decoder.userInfo().end()) {
    std::any_cast<std::atomic<std::size_t>*>(counter->second)->fetch_add(1, std::memory_order_relaxed);
  }
  auto entry = decodeFields<StationEntry>(decoder);
  if (!entry) return entry;
  if (!fromHexString<UIColor>(entry->genreColour)) {
    return unusable("genreColour", "a colour code such as \"#1F618D\"", entry->genreColour);
  }
  if (!URL::fromString(entry->link)) return unusable("link", "a link by RFC 3986", entry->link);
  return entry;
}

Station::Station(const StationEntry& entry)
    : shown_{entry.listeners, entry.song},
      entry_(entry),
      colour_(fromHexString<UIColor>(entry.genreColour)),
      song_(makeString(entry.song)),
      listeners_(entry.listeners),
      favourite_(entry.favourite) {}

Strong<NSString> Station::shareLink() const {
  UTMParameters campaign;
  campaign.campaign = "board";
  campaign.medium = "share";
  campaign.source = "havrin-radio";
  campaign.term = entry_.genre;
  auto link = URL::fromString(entry_.link);
  if (link) add(*link, campaign);
  return makeString(link ? link->relativeString() : entry_.link);
}

}  // namespace radio
