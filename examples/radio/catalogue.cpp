// SPDX-License-Identifier: Apache-2.0
#include "catalogue.h"

#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/collections/set_blocks_messages.h>
#include <HavrinFoundation/platform/foundation/fast_enumeration.h>

#include <utility>
#include <vector>

namespace radio {

using namespace havrin;

namespace {

Strong<NSOrderedSet> genresOf(const NSArray& stations) {
  const auto names = send<"map:">(
      stations, [](const Station& station) { return Strong<NSObject>(makeString(station.entry().genre)); });
  return send<"orderedSetWithArray:">(classOf<NSOrderedSet>(), names);
}

Strong<NSMutableArray> mutableCopyOf(const NSArray& stations) {
  return static_cast<NSMutableArray*>(stations.mutableCopy().get());
}

Station* stationIn(const Strong<NSObject>& found) { return static_cast<Station*>(found.get()); }

}  // namespace

Catalogue::Catalogue(const NSArray& stations)
    : all_(stations.snapshot()), genres_(genresOf(stations)), index_(stations) {
  std::size_t ordinal = 0;
  for (NSObject* object : each(all_)) static_cast<Station&>(*object).shown().ordinal = ordinal++;
  setOrder(*all_);
  apply({});
}

void Catalogue::setOrder(const NSArray& stations) {
  order_ = stations.snapshot();
  isInFileOrder_ = order_ == all_;
  ordered_.clear();
  for (NSObject* object : each(order_)) ordered_.push_back(static_cast<Station*>(object));
}

// Neither sends nor counts references: a million stations are not in the processor's caches.
void Catalogue::apply(const Filter& filter) {
  const std::vector<bool> matches = index_.matches(filter.text);
  visible_.clear();
  isVisible_.assign(matches.size(), false);
  onAir_ = 0;
  listeners_ = 0;
  for (std::size_t i = 0; i < ordered_.size(); ++i) {
    if (isInFileOrder_ && !matches[i]) continue;
    Station& station = *ordered_[i];
    const Shown& shown = station.shown();
    const bool isFound = matches[shown.ordinal] && (!filter.favouritesOnly || station.isFavourite()) &&
                         (filter.genre.empty() || filter.genre == station.entry().genre);
    if (!isFound) continue;
    visible_.push_back(&station);
    isVisible_[shown.ordinal] = true;
    listeners_ += shown.listeners;
    onAir_ += shown.song.empty() ? 0 : 1;
  }
}

void Catalogue::shuffle() {
  const auto shuffled = mutableCopyOf(*order_);
  send<"shuffle">(shuffled);
  setOrder(*shuffled);
}

void Catalogue::hide(Station& station) {
  const auto others = mutableCopyOf(*order_);
  send<"hav_removeObjectsInArray:">(others, makeArray({&station}));
  setOrder(*others);
}

void Catalogue::showAll() {
  if (order_->count() != all_->count()) setOrder(*all_);
}

void Catalogue::note(Station& station, std::int64_t listeners) {
  Shown& shown = station.shown();
  const std::int64_t before = std::exchange(shown.listeners, listeners);
  if (isVisible(station)) listeners_ += listeners - before;
}

void Catalogue::note(Station& station, std::string song) {
  Shown& shown = station.shown();
  const bool wasOnAir = !std::exchange(shown.song, std::move(song)).empty();
  if (!isVisible(station) || wasOnAir != shown.song.empty()) return;
  wasOnAir ? --onAir_ : ++onAir_;
}

Station* Catalogue::stationNumbered(std::int64_t number) const {
  return stationIn(
      send<"firstWhere:">(all_, [number](const Station& station) { return station.entry().identifier == number; }));
}

Station* Catalogue::stationLinked(std::string_view link) const {
  return stationIn(send<"firstWhere:">(all_, [link](const Station& station) { return station.entry().link == link; }));
}

std::string Catalogue::genreAfter(const std::string& genre) const {
  const Strong<NSOrderedSet> onAir = send<"select:">(genres_, [this](const NSString& name) {
    const std::string wanted = utf8(name);
    return send<"firstWhere:">(
        all_, [&wanted](Station& station) { return !station.shown().song.empty() && station.entry().genre == wanted; });
  });
  const std::uint64_t next = genre.empty() ? 0 : onAir->indexOfObject(makeString(genre)) + 1;
  return next < onAir->count() ? utf8(static_cast<const NSString&>(*onAir->objectAtIndex(next))) : "";
}

}  // namespace radio
