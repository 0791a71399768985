#include "board.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>
#include <utility>

#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/colours/colour_arithmetic.h>
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/dates/shared_formatter.h>
#include <HavrinFoundation/frame/rate_limits_messages.h>
#include <HavrinFoundation/links/app_identity.h>
#include <HavrinFoundation/links/utm_parameters.h>
#include <HavrinFoundation/observation/key_value_observation_messages.h>
#include <HavrinFoundation/observation/responder_observations_messages.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/text/base36.h>
#include <HavrinFoundation/text/friendly_number.h>
#include <HavrinFoundation/text/sha256.h>
#include <HavrinFoundation/text/string_helpers.h>

namespace radio {

using namespace havrin;

namespace {

constexpr double kSearchDelaySeconds = 0.2;
constexpr double kRefreshIntervalSeconds = 0.1;
constexpr double kDimmed = 0.65;

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

std::string onAirText(Date since, Date now) {
  const std::int64_t days = numberOfCalendarDays(since, now);
  if (days < 0) return "soon";
  if (days == 0) return "today";
  if (days == 1) return "yesterday";
  return std::to_string(days) + " days";
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

std::string httpDate() { return "Date: " + utf8(*rfc1123<NSDateFormatter>()->stringFromDate(NSDate::date())); }

// The link as it is shared: with the campaign that the sharing is counted under.
std::string shareLink(const Station& station) {
  UTMParameters campaign;
  campaign.campaign = "board";
  campaign.medium = "share";
  campaign.source = "havrin-radio";
  campaign.term = station.entry().genre;
  auto link = URL::fromString(station.entry().link);
  if (link) add(*link, campaign);
  return link ? std::string(link->relativeString()) : station.entry().link;
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

bool Board::press(std::string_view key) {
  note_.clear();
  if (key == "\x04" || (key == "q" && search_.empty())) return false;
  if (key == "\x1b") {
    search_.clear();
    favouritesOnly_ = false;
  } else if (key == "\x7f" || key == "\b") {
    while (!search_.empty() && (static_cast<unsigned char>(search_.back()) & 0xC0) == 0x80) search_.pop_back();
    if (!search_.empty()) search_.pop_back();
  } else if (key == "\t") {
    send<"shuffle">(order_);
  } else if (key == "*") {
    favouritesOnly_ = !favouritesOnly_;
  } else if (key == "+") {
    mark();
  } else if (key == "#") {
    recolour();
  } else if (key == "\r" || key == "\n") {
    share();
  } else if (isSearchText(key)) {
    search_ += key;
  } else {
    note_ = "Search for letters, digits and blanks.";
  }
  // The key is shown at once, the search runs when the typing pauses.
  send<"h_debounce:delay:">(*this, selector<"applySearch">, kSearchDelaySeconds);
  refresh();
  return true;
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
  refresh();
}

void Board::refresh() { redraw_(); }

Station* Board::firstFound() {
  applySearch();  // what is typed counts, also before the typing has paused
  auto* first = static_cast<Station*>(visible_->firstObject().get());
  if (!first) note_ = "The search finds no station.";
  return first;
}

void Board::share() {
  if (const Station* station = firstFound()) note_ = shareLink(*station);
}

void Board::mark() {
  Station* station = firstFound();
  if (!station) return;
  station->setFavourite(!station->isFavourite());
  note_ = station->entry().name + (station->isFavourite() ? " is a favourite now." : " is no favourite any more.");
}

// The code after the genre's own one, or the first where that is another.
void Board::recolour() {
  const Station* station = firstFound();
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

std::string Board::row(const Station& station, std::size_t width, const Paint& paint) const {
  const StationEntry& entry = station.entry();
  const Shown& shown = shown_.at(&station);
  const bool onAir = !shown.song.empty();
  const Date now = Date::now();
  const Date since = fromMillisecondsSince1970<Date>(entry.onAirSince);
  const std::string birthday = isSameMonthAndDayAsToday(since) ? " *" : "";

  const std::size_t name = std::clamp<std::size_t>(width / 4, 14, 30);
  const std::string song = onAir ? shown.song : "off the air";
  const std::string left = fitted(station.isFavourite() ? "★" : "", 2) + fitted(base36Value(entry.identifier), 6) +
                           fitted(groupedSHA256(entry.link).value_or("").substr(0, 8), 9) + fitted(entry.name, name) +
                           " ";
  const std::size_t room = width - (2 + 6 + 9 + name + 1) - 12;
  const std::string right =
      fitted(" " + fitted(friendlyNumber(shown.listeners), 7, true) + fitted(friendlyNumber(entry.plays), 7, true) +
                 " " + fitted(onAirText(since, now) + birthday, 12) + " " + song,
             room);
  const std::string genre = " " + fitted(entry.genre, 10) + " ";
  if (onAir) return left + paint.swatch(genre, station.colour()) + right;
  // Off the air: the colour is mixed with grey, the rest is faint.
  const Strong<UIColor> dimmed = blend(station.colour(), *UIColor::grayColor(), kDimmed);
  return paint.faint(left) + paint.swatch(genre, *dimmed) + paint.faint(right);
}

std::vector<std::string> Board::footer(std::size_t width, const Paint& paint) const {
  std::vector<std::string> lines;
  lines.push_back(paint.faint(std::string(width, '-')));
  // A link is shown whole, so that it can be copied.
  for (std::string& line : linesOf(note_, width)) lines.push_back(std::move(line));
  lines.push_back(
      paint.faint(fitted("type to search  Enter share  Tab shuffle  * favourites  + mark  # colour  q end", width)));
  lines.push_back(paint.faint(fitted(httpDate(), width)));
  lines.push_back(paint.faint(fitted(havrinAppUserAgentString(*NSBundle::mainBundle()), width)));
  return lines;
}

std::vector<std::string> Board::lines(Terminal::Size size, const Paint& paint) const {
  const std::size_t width = std::clamp<std::size_t>(size.width, 60, 160);
  const Strong<NSObject> listeners =
      send<"reduce:withBlock:">(visible_, makeNumber(0), [this](const NSNumber& sum, const Station& station) {
        return Strong<NSObject>(makeNumber(sum.integerValue() + shown_.at(&station).listeners));
      });
  const Strong<NSArray> onAir =
      send<"select:">(visible_, [this](const Station& station) { return !shown_.at(&station).song.empty(); });

  std::vector<std::string> lines;
  const std::string counts = std::to_string(visible_->count()) + " of " + std::to_string(all_->count()) +
                             " stations, " + std::to_string(onAir->count()) + " on the air, " +
                             friendlyNumber(cast<NSNumber>(listeners.get())->integerValue()) + " listeners";
  lines.push_back(paint.bold("HAVRIN RADIO  ") + fitted(counts, width > 14 ? width - 14 : 0));
  const std::string filter = "search: " + search_ + "_" + (favouritesOnly_ ? "   favourites only" : "");
  const std::string file = source_ + (skipped_ ? ": " + std::to_string(skipped_) + " entries skipped" : "");
  const std::size_t half = width / 2;
  lines.push_back(fitted(filter, half) + paint.faint(fitted(file, width - half, true)));
  lines.emplace_back();

  const std::size_t name = std::clamp<std::size_t>(width / 4, 14, 30);
  lines.push_back(
      paint.bold(fitted("  No.   Key      " + fitted("Station", name) + " Genre        " + fitted("Listen", 7, true) +
                            fitted("Plays", 7, true) + " " + fitted("On air", 12) + " Playing",
                        width)));
  const std::vector<std::string> end = footer(width, paint);
  const std::size_t room = size.height > lines.size() + end.size() ? size.height - lines.size() - end.size() : 1;
  for (std::uint64_t i = 0; i < std::min<std::uint64_t>(room, visible_->count()); ++i) {
    lines.push_back(row(static_cast<const Station&>(*visible_->objectAtIndex(i)), width, paint));
  }
  lines.insert(lines.end(), end.begin(), end.end());
  return lines;
}

}  // namespace radio
