// SPDX-License-Identifier: Apache-2.0
#include "board.h"

#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/frame/rate_limits_messages.h>
#include <HavrinFoundation/observation/key_value_observation_messages.h>
#include <HavrinFoundation/observation/responder_observations_messages.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/runtime/clamp.h>
#include <HavrinFoundation/text/string_helpers.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>
#include <utility>

namespace radio {

using namespace havrin;

namespace {

constexpr double kSearchDelaySeconds = 0.2;
constexpr double kRefreshIntervalSeconds = 0.1;

// What a genre may be given: told apart from one another on light and dark grounds.
constexpr std::string_view kColourCodes[] = {"#B03A2E", "#CA6F1E", "#A67C00", "#3E7C59",
                                             "#117864", "#1F618D", "#6C3483", "#AF4C7B"};

std::string lowered(std::string_view text) {
  std::string result(text);
  for (char& unit : result) {
    if (static_cast<unsigned char>(unit) < 0x80)
      unit = static_cast<char>(std::tolower(static_cast<unsigned char>(unit)));
  }
  return result;
}

// What a search may be made of: letters and digits of any script, and blanks.
bool isSearchText(std::string_view text) {
  static const CharacterSet kAllowed = [] {
    CharacterSet allowed = CharacterSet::alphanumerics();
    allowed.insert(U' ');
    return allowed;
  }();
  return containsOnlyCharacters(text, kAllowed);
}

std::string greeting(Date lastOpen, Date now) {
  const std::int64_t days = numberOfCalendarDays(lastOpen, now);
  return "Last open " + onAirText(lastOpen, now) + (days > 1 ? " ago." : ".");
}

void insertOrErase(std::set<std::string>& set, const std::string& element, bool isIn) {
  if (isIn) {
    set.insert(element);
  } else {
    set.erase(element);
  }
}

}  // namespace

Board::Board(const NSArray& stations, std::string source, std::size_t skipped, std::function<void()> redraw)
    : all_(stations.snapshot()),
      order_(static_cast<NSMutableArray*>(stations.mutableCopy().get())),
      visible_(all_),
      source_(std::move(source)),
      skipped_(skipped),
      redraw_(std::move(redraw)) {
  for (NSObject* object : each(all_)) {
    const auto& station = static_cast<const Station&>(*object);
    shown_[&station] = {station.entry().listeners, station.entry().song};
  }
}

void Board::restore(const SavedState& state) {
  kept_ = state;
  for (NSObject* object : each(all_)) {
    auto& station = static_cast<Station&>(*object);
    const std::string& link = station.entry().link;
    const bool marked = state.favourites.contains(link);
    if (marked || state.unmarked.contains(link)) station.setFavourite(marked);
  }
  for (const auto& [genre, code] : state.genreColours) paintGenre(genre, code);
  if (isSearchText(state.search)) search_ = state.search;
  favouritesOnly_ = state.favouritesOnly;
  if (const Date now = Date::now(); state.lastOpen && *state.lastOpen <= now) note_ = greeting(*state.lastOpen, now);
  applySearch();
}

SavedState Board::state() const {
  SavedState state = kept_;
  for (NSObject* object : each(all_)) {
    const auto& station = static_cast<const Station&>(*object);
    const std::string& link = station.entry().link;
    insertOrErase(state.favourites, link, station.isFavourite());
    insertOrErase(state.unmarked, link, station.entry().favourite && !station.isFavourite());
  }
  state.search = search_;
  state.favouritesOnly = favouritesOnly_;
  state.lastOpen = Date::now();
  return state;
}

void Board::observe() {
  const auto paths = makeArray({makeString("listeners"), makeString("song")});
  const Block<void(NSObject*, NSObject*, NSDictionary*)> action =
      [](Board& board, Station& station, NSDictionary& change) { board.note(station, change); };
  for (NSObject* station : each(all_)) {
    send<"observeModel:forKeyPaths:options:action:">(
        *this, station, paths, KeyValueObservationOptionSkipInitial | KeyValueObservationOptionSkipUnchanged, action);
  }
}

void Board::note(Station& station, const NSDictionary& change) {
  const Strong<NSObject> value = change.objectForKey(makeString("new"));
  Shown& shown = shown_.at(&station);
  if (const auto* listeners = cast<NSNumber>(value.get())) shown.listeners = listeners->integerValue();
  if (const auto* song = cast<NSString>(value.get())) shown.song = utf8(*song);
  send<"h_throttle:delay:">(*this, selector<"refresh">, kRefreshIntervalSeconds);
}

bool Board::press(const Keystroke& key) {
  note_.clear();
  if (key.key == Key::endOfInput || (key.text == "q" && !searching_)) return false;
  if (searching_ && (key.key == Key::text || key.key == Key::erase)) {
    type(key);
  } else {
    command(key);
  }
  refresh();
  return true;
}

// The key is shown at once, the search runs when the typing pauses.
void Board::type(const Keystroke& key) {
  if (key.key == Key::erase) {
    while (!search_.empty() && (static_cast<unsigned char>(search_.back()) & 0xC0) == 0x80) search_.pop_back();
    if (!search_.empty()) search_.pop_back();
  } else if (isSearchText(key.text)) {
    search_ += key.text;
  } else {
    note_ = "Search for letters, digits and blanks.";
  }
  send<"h_debounce:delay:">(*this, selector<"applySearch">, kSearchDelaySeconds);
}

void Board::command(const Keystroke& key) {
  const auto page = static_cast<std::int64_t>(page_);
  const auto row = static_cast<std::int64_t>(cursor_);
  switch (key.key) {
    case Key::up:
      return moveTo(row - 1);
    case Key::down:
      return moveTo(row + 1);
    case Key::pageUp:
      return moveTo(row - page);
    case Key::pageDown:
      return moveTo(row + page);
    case Key::home:
      return moveTo(0);
    case Key::end:
      return moveTo(static_cast<std::int64_t>(visible_->count()) - 1);
    case Key::escape:
      return leave();
    case Key::tab:
      send<"shuffle">(order_);
      return applySearch();
    case Key::enter:
      applySearch();  // what is typed counts, also before the typing has paused
      if (!std::exchange(searching_, false)) showsDetail_ = selected() && !showsDetail_;
      return;
    case Key::text:
      return runCommand(key.text);
    default:
      return;
  }
}

void Board::runCommand(std::string_view letter) {
  if (letter == "/") {
    searching_ = true;
    showsDetail_ = showsKeys_ = false;
  } else if (letter == "?") {
    showsKeys_ = !showsKeys_;
  } else if (letter == "*") {
    favouritesOnly_ = !favouritesOnly_;
    applySearch();
  } else if (letter == "+") {
    mark();
  } else if (letter == "#") {
    recolour();
  } else {
    note_ = "? shows the keys.";
  }
}

// Closes the innermost of what is open.
void Board::leave() {
  if (std::exchange(showsKeys_, false) || std::exchange(showsDetail_, false)) return;
  searching_ = false;
  favouritesOnly_ = false;
  search_.clear();
  applySearch();
}

void Board::moveTo(std::int64_t row) {
  const auto count = static_cast<std::int64_t>(visible_->count());
  cursor_ =
      static_cast<std::size_t>(havrin::clamp(row, ClosedRange<std::int64_t>{0, std::max<std::int64_t>(0, count - 1)}));
}

void Board::say(std::string text) {
  note_ = std::move(text);
  refresh();
}

void Board::applySearch() {
  const std::string wanted = lowered(search_);
  Strong<NSArray> found = send<"select:">(order_, [&](const Station& station) {
    const StationEntry& entry = station.entry();
    return lowered(entry.name + "\n" + entry.genre + "\n" + entry.song).find(wanted) != std::string::npos;
  });
  if (favouritesOnly_) {
    const Strong<NSArray> others = send<"reject:">(all_, [](const Station& station) { return station.isFavourite(); });
    const auto kept = Strong<NSMutableArray>(static_cast<NSMutableArray*>(found->mutableCopy().get()));
    (void)send<"hav_removeObjectsInArray:">(kept, others);
    found = kept->snapshot();
  }
  visible_ = found;
  moveTo(static_cast<std::int64_t>(cursor_));
  refresh();
}

void Board::refresh() { redraw_(); }

Station* Board::selected() {
  if (cursor_ < visible_->count()) return static_cast<Station*>(visible_->objectAtIndex(cursor_).get());
  note_ = "The search finds no station.";
  return nullptr;
}

void Board::mark() {
  Station* station = selected();
  if (!station) return;
  station->setFavourite(!station->isFavourite());
  note_ = station->entry().name + (station->isFavourite() ? " is a favourite now." : " is no favourite any more.");
}

// The code after the genre's own one, or the first where that is another.
void Board::recolour() {
  const Station* station = selected();
  if (!station) return;
  const auto* const found = std::find(std::begin(kColourCodes), std::end(kColourCodes), hexString(station->colour()));
  const bool isLast = found == std::end(kColourCodes) || found + 1 == std::end(kColourCodes);
  const std::string_view code = isLast ? kColourCodes[0] : found[1];
  const std::string& genre = station->entry().genre;
  paintGenre(genre, code);
  kept_.genreColours[genre] = code;
  note_ = genre + " is " + std::string(code) + " now.";
}

void Board::paintGenre(const std::string& genre, std::string_view code) {
  const Strong<UIColor> colour = fromHexString<UIColor>(code);
  for (NSObject* object : each(all_)) {
    auto& station = static_cast<Station&>(*object);
    if (station.entry().genre == genre) station.setColour(colour);
  }
}

}  // namespace radio
