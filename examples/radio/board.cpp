// SPDX-License-Identifier: Apache-2.0
#include "board.h"

#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/colours/colour_arithmetic.h>
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/frame/rate_limits_messages.h>
#include <HavrinFoundation/observation/key_value_observation_messages.h>
#include <HavrinFoundation/observation/responder_observations_messages.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/runtime/casts_messages.h>
#include <HavrinFoundation/runtime/clamp.h>
#include <HavrinFoundation/text/base36.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

namespace radio {

using namespace havrin;

namespace {

constexpr double kSearchDelaySeconds = 0.2;
constexpr double kRefreshIntervalSeconds = 0.1;

// The colours of genres, chosen to differ on light and dark backgrounds.
constexpr std::string_view kColourCodes[] = {"#B03A2E", "#CA6F1E", "#A67C00", "#3E7C59",
                                             "#117864", "#1F618D", "#6C3483", "#AF4C7B"};

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

// The code after that of an equal colour, the first one behind the last and for any other colour.
Strong<UIColor> colourAfter(const UIColor& colour) {
  constexpr double kOneStep = 1.0 / 255;
  const auto* const found = std::find_if(
      std::begin(kColourCodes), std::end(kColourCodes),
      [&colour](std::string_view code) { return isEqual(colour, *fromHexString<UIColor>(code), kOneStep / 2); });
  const bool isLast = found == std::end(kColourCodes) || found + 1 == std::end(kColourCodes);
  return fromHexString<UIColor>(isLast ? kColourCodes[0] : found[1]);
}

std::string openedText(const NSMutableArray& opened) {
  if (opened.count() == 0) return "No station has been opened yet.";
  const auto names = send<"reduce:withBlock:">(opened, nullptr, [](NSString* before, const Station& station) {
    return Strong<NSObject>(makeString((before ? utf8(*before) + ", " : "") + station.entry().name));
  });
  return "Opened: " + utf8(*cast<NSString>(names.get()));
}

}  // namespace

Board::Board(const NSArray& stations, std::string source, std::size_t skipped)
    : catalogue_(stations), opened_(make<NSMutableArray>()), source_(std::move(source)), skipped_(skipped) {}

void Board::restore(const SavedState& state) {
  kept_ = state;
  for (NSObject* object : each(&catalogue_.all())) {
    auto& station = static_cast<Station&>(*object);
    const std::string& link = station.entry().link;
    const bool marked = state.favourites.contains(link);
    if (marked || state.unmarked.contains(link)) station.setFavourite(marked);
  }
  for (const auto& [genre, code] : state.genreColours) paintGenre(genre, fromHexString<UIColor>(code));
  if (isSearchText(state.search)) filter_.text = state.search;
  filter_.favouritesOnly = state.favouritesOnly;
  if (const Date now = Date::now(); state.lastOpen && *state.lastOpen <= now) note_ = greeting(*state.lastOpen, now);
  applySearch();
}

SavedState Board::state() const {
  SavedState state = kept_;
  for (NSObject* object : each(&catalogue_.all())) {
    const auto& station = static_cast<const Station&>(*object);
    const std::string& link = station.entry().link;
    insertOrErase(state.favourites, link, station.isFavourite());
    insertOrErase(state.unmarked, link, station.entry().favourite && !station.isFavourite());
  }
  state.search = prompt_.kind() == Prompt::Kind::search ? prompt_.text() : filter_.text;
  state.favouritesOnly = filter_.favouritesOnly;
  state.lastOpen = Date::now();
  return state;
}

void Board::observe(const NSArray& live) {
  const auto paths = makeArray({makeString("listeners"), makeString("song")});
  const Block<void(NSObject*, NSObject*, NSDictionary*)> action =
      [](Board& board, Station& station, NSDictionary& change) { board.note(station, change); };
  for (NSObject* station : each(&live)) {
    send<"observeModel:forKeyPaths:options:action:">(
        *this, station, paths, KeyValueObservationOptionSkipInitial | KeyValueObservationOptionSkipUnchanged, action);
  }
}

void Board::note(Station& station, const NSDictionary& change) {
  const Strong<NSObject> value = change.objectForKey(makeString("new"));
  if (const auto* listeners = cast<NSNumber>(value.get())) catalogue_.note(station, listeners->integerValue());
  if (const auto* song = cast<NSString>(value.get())) catalogue_.note(station, utf8(*song));
  send<"h_throttle:delay:">(*this, selector<"refresh">, kRefreshIntervalSeconds);
}

bool Board::press(const Keystroke& key) {
  note_.clear();
  if (key.key == Key::endOfInput || (key.text == "q" && !prompt_.isOpen())) return false;
  if (prompt_.isOpen() && (key.key == Key::text || key.key == Key::erase)) {
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
    prompt_.erase();
  } else if (!prompt_.type(key.text)) {
    note_ = "The " + std::string(prompt_.label()) + " takes " + std::string(prompt_.allowed()) + ".";
  }
  if (prompt_.kind() == Prompt::Kind::search) {
    send<"h_debounce:delay:">(*this, selector<"applySearch">, kSearchDelaySeconds);
  }
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
      return moveTo(static_cast<std::int64_t>(catalogue_.visible().size()) - 1);
    case Key::escape:
      return leave();
    case Key::tab:
      catalogue_.shuffle();
      return applySearch();
    case Key::enter:
      return enter();
    case Key::text:
      return runCommand(key.text);
    default:
      return;
  }
}

void Board::runCommand(std::string_view letter) {
  if (letter == "/") {
    openPrompt(Prompt::Kind::search, filter_.text);
  } else if (letter == ":") {
    openPrompt(Prompt::Kind::number, "");
  } else if (letter == "c") {
    openPrompt(Prompt::Kind::colour, "");
  } else if (letter == "#") {
    recolour("");
  } else if (letter == "?") {
    showsKeys_ = !showsKeys_;
  } else if (letter == "*") {
    filter_.favouritesOnly = !filter_.favouritesOnly;
    applySearch();
  } else if (letter == "g") {
    filter_.genre = catalogue_.genreAfter(filter_.genre);
    applySearch();
  } else if (letter == "r") {
    note_ = openedText(*opened_);
  } else if (letter == "+") {
    mark();
  } else if (letter == "-") {
    hide();
  } else if (letter == "x") {
    if (const auto station = send<"hav_randomObject">(catalogue_.all())) moveTo(static_cast<Station&>(*station));
  } else if (letter == "y") {
    share();
  } else {
    note_ = "? shows the keys.";
  }
}

void Board::openPrompt(Prompt::Kind kind, std::string text) {
  prompt_.open(kind, std::move(text));
  showsDetail_ = showsKeys_ = false;
}

void Board::enter() {
  applySearch();  // what is typed counts, also before the typing has paused
  const Prompt::Kind kind = prompt_.kind();
  const std::string typed = prompt_.close();
  if (kind == Prompt::Kind::none) return open();
  if (kind == Prompt::Kind::number) goTo(typed);
  if (kind == Prompt::Kind::colour) recolour(typed);
}

// Closes the innermost of what is open.
void Board::leave() {
  if (std::exchange(showsKeys_, false) || std::exchange(showsDetail_, false)) return;
  const Prompt::Kind kind = prompt_.kind();
  (void)prompt_.close();
  if (kind == Prompt::Kind::number || kind == Prompt::Kind::colour) return;
  filter_ = {};
  catalogue_.showAll();
  applySearch();
}

void Board::moveTo(std::int64_t row) {
  const auto count = static_cast<std::int64_t>(catalogue_.visible().size());
  cursor_ =
      static_cast<std::size_t>(havrin::clamp(row, ClosedRange<std::int64_t>{0, std::max<std::int64_t>(0, count - 1)}));
}

// Leaves a filter that hides it.
void Board::moveTo(const Station& station) {
  if (!catalogue_.isVisible(station)) {
    filter_ = {};
    applySearch();
  }
  const std::vector<Station*>& visible = catalogue_.visible();
  moveTo(std::find(visible.begin(), visible.end(), &station) - visible.begin());
}

void Board::goTo(const std::string& number) {
  const std::optional<std::int64_t> identifier = base36ValueAsBase10(number);
  const Station* station = identifier ? catalogue_.stationNumbered(*identifier) : nullptr;
  if (station) return moveTo(*station);
  note_ = identifier ? "No station has the number " + base36Value(*identifier) + "."
                     : "A station's number has up to 13 digits, 0 to 9 and A to Z.";
}

void Board::say(std::string text) {
  note_ = std::move(text);
  refresh();
}

void Board::applySearch() {
  if (prompt_.kind() == Prompt::Kind::search) filter_.text = prompt_.text();
  catalogue_.apply(filter_);
  moveTo(static_cast<std::int64_t>(cursor_));
  refresh();
}

void Board::refresh() { hasChanged_ = true; }

Station* Board::selected() {
  if (cursor_ < catalogue_.visible().size()) {
    return catalogue_.visible()[cursor_];
  }
  note_ = "The search finds no station.";
  return nullptr;
}

std::string Board::selectedLink() {
  const Station* station = selected();
  return station ? station->entry().link : "";
}

void Board::select(std::string_view link) {
  const Station* station = catalogue_.stationLinked(link);
  if (station && catalogue_.isVisible(*station)) moveTo(*station);
}

void Board::open() {
  Station* station = selected();
  showsDetail_ = station && !showsDetail_;
  if (!showsDetail_) return;
  constexpr std::int64_t kRemembered = 5;
  send<"uniqueInsertObject:atPreferredIdx:">(opened_, station, std::uint64_t{0});
  send<"removeObjectsFromIndex:">(opened_, kRemembered);
}

void Board::mark() {
  Station* station = selected();
  if (!station) return;
  station->setFavourite(!station->isFavourite());
  note_ = station->entry().name + (station->isFavourite() ? " is a favourite now." : " is no longer a favourite.");
}

void Board::hide() {
  Station* station = selected();
  if (!station) return;
  catalogue_.hide(*station);
  note_ = station->entry().name + " is hidden; Escape shows it again.";
  applySearch();
}

void Board::share() {
  const Strong<NSObject> shareable = send<"ifConformance:">(selected(), protocolOf<Shareable>());
  if (shareable) note_ = utf8(*send<"shareLink">(shareable));
}

// Nothing typed: the colour after the genre's own one, or the first where that is another.
void Board::recolour(const std::string& typed) {
  const Station* station = selected();
  if (!station) return;
  const Strong<UIColor> colour = typed.empty() ? colourAfter(station->colour()) : fromHexString<UIColor>(typed);
  const std::optional<std::string> code = colour ? hexString(*colour) : std::nullopt;
  if (!code) {
    note_ = "A colour code has six hexadecimal digits, as #1F618D; this has another number: " + typed;
    return;
  }
  const std::string& genre = station->entry().genre;
  paintGenre(genre, colour);
  kept_.genreColours[genre] = *code;
  note_ = genre + " is " + *code + " now.";
}

void Board::paintGenre(const std::string& genre, const Strong<UIColor>& colour) {
  for (NSObject* object : each(&catalogue_.all())) {
    auto& station = static_cast<Station&>(*object);
    if (station.entry().genre == genre) station.setColour(colour);
  }
}

}  // namespace radio
