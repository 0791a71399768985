// SPDX-License-Identifier: Apache-2.0
// How the board is drawn: header, list or station, footer.
#include "board.h"
#include "detail.h"
#include <HavrinFoundation/dates/shared_formatter.h>
#include <HavrinFoundation/links/app_identity.h>
#include <HavrinFoundation/runtime/clamp.h>
#include <HavrinFoundation/text/friendly_number.h>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace radio {

using namespace havrin;

namespace {

constexpr std::size_t kWide = 150;  // from here on the station is shown beside the list

constexpr std::pair<std::string_view, std::string_view> kKeys[] = {
    {"/", "search: letters, digits and blanks; Enter keeps it, Escape leaves"},
    {"arrows, wheel", "move, as do Page Up, Page Down, Home and End"},
    {"Enter", "opens the station; Escape or Enter closes it"},
    {":", "goes to the station of a number, as it is in the first column"},
    {"g", "shows the next genre only, and all of them after the last"},
    {"r", "names the stations opened last"},
    {"y", "shows the link to share the station by"},
    {"+", "makes the station a favourite, or no favourite"},
    {"*", "shows favourites only"},
    {"#, c", "gives the genre the next colour, or one whose code is typed"},
    {"-", "hides the station until Escape"},
    {"x", "goes to any station"},
    {"Tab", "shuffles"},
    {"Escape", "closes what is open, then shows every station"},
    {"Ctrl-Z", "suspends the board (fg brings it back)"},
    {"q, Ctrl-C", "ends"}};

std::string httpDate() { return "Date: " + utf8(*rfc1123<NSDateFormatter>()->stringFromDate(NSDate::date())); }

// A key and what it does, below it where they do not fit beside one another.
std::vector<std::string> keyLines(std::size_t width) {
  constexpr std::size_t kKey = 15;
  std::vector<std::string> lines;
  for (const auto& [key, meaning] : kKeys) {
    std::string label(key);
    for (const std::string& line : linesOf(meaning, width - kKey)) {
      lines.push_back(fitted(std::exchange(label, {}), kKey) + fitted(line, width - kKey));
    }
  }
  return lines;
}

// The first of the texts that has room, the last one where none has.
std::string firstFitting(std::initializer_list<std::string> texts, std::size_t width) {
  const auto* const found =
      std::find_if(texts.begin(), texts.end(), [width](const std::string& text) { return columns(text) <= width; });
  return found == texts.end() ? *std::prev(texts.end()) : *found;
}

}  // namespace

std::vector<std::string> Board::footer(std::size_t width, const Paint& paint) const {
  std::vector<std::string> lines;
  lines.push_back(paint.faint(std::string(width, '-')));
  for (std::string& line : linesOf(note_, width)) lines.push_back(std::move(line));
  lines.push_back(paint.faint(
      fitted(prompt_.isOpen()
                 ? "type " + std::string(prompt_.allowed()) + "  Enter keep  Esc leave"
                 : firstFitting({"/ search  Enter open  ? keys  q end  + mark  * favourites  # colour  Tab shuffle",
                                 "/ search  Enter open  ? keys  q end"},
                                width),
             width)));
  lines.push_back(paint.faint(fitted(httpDate(), width)));
  lines.push_back(paint.faint(fitted(havrinAppUserAgentString(*NSBundle::mainBundle()), width)));
  return lines;
}

std::vector<std::string> Board::header(std::size_t width, const Paint& paint) const {
  const std::string count =
      std::to_string(catalogue_.visible().size()) + " of " + std::to_string(catalogue_.all().count());
  const std::string heard = friendlyNumber(catalogue_.listeners());
  const std::string search = prompt_.isOpen()       ? std::string(prompt_.label()) + ": " + prompt_.text() + "_"
                             : filter_.text.empty() ? "/ to search"
                                                    : "search: " + filter_.text;
  const std::string filter = search + (filter_.genre.empty() ? "" : "   " + filter_.genre + " only") +
                             (filter_.favouritesOnly ? "   favourites only" : "");
  const std::string skipped =
      skipped_ ? std::to_string(skipped_) + (skipped_ == 1 ? " entry" : " entries") + " skipped" : "";
  constexpr std::size_t kTitle = 14;
  const std::size_t room = width > kTitle ? width - kTitle : 0;
  // The search is what one types: the file gives way.
  const std::size_t typed = std::max(width / 2, std::min(width, columns(filter) + 1));
  const std::string file = width == typed ? ""
                                          : firstFitting({source_ + (skipped_ ? ": " + skipped : ""), skipped,
                                                          skipped_ ? std::to_string(skipped_) + " skipped" : source_},
                                                         width - typed - 1);
  return {paint.bold(fitted("HAVRIN RADIO  ", std::min(width, kTitle))) +
              fitted(firstFitting({count + " stations, " + std::to_string(catalogue_.onAir()) + " on the air, " +
                                       heard + " listeners",
                                   count + ", " + heard + " listeners", count},
                                  room),
                     room),
          fitted(filter, typed) + paint.faint(fitted(file, width - typed, true)), ""};
}

std::vector<std::string> Board::list(std::size_t width, std::size_t rows, const Paint& paint) {
  const Layout layout(width);
  std::vector<std::string> lines{layout.heading(paint)};
  page_ = std::max<std::size_t>(1, rows - 1);
  const std::size_t count = catalogue_.visible().size();
  top_ = std::min({top_, cursor_, count > page_ ? count - page_ : 0});
  if (cursor_ >= top_ + page_) top_ = cursor_ - page_ + 1;
  for (std::size_t i = top_; i < std::min(top_ + page_, count); ++i) {
    const auto& station = *catalogue_.visible()[i];
    lines.push_back(layout.row(station, i == cursor_, paint));
  }
  return lines;
}

std::vector<std::string> Board::detail(std::size_t width, std::size_t rows, const Paint& paint) {
  std::vector<std::string> lines;
  if (cursor_ < catalogue_.visible().size()) {
    const auto& station = *catalogue_.visible()[cursor_];
    lines = detailLines(station, width, paint);
  }
  lines.resize(std::min(lines.size(), rows));
  return lines;
}

std::vector<std::string> Board::lines(Terminal::Size size, const Paint& paint) {
  const std::size_t width = havrin::clamp(size.width, ClosedRange<std::size_t>{20, 240});
  std::vector<std::string> lines = header(width, paint);
  const std::vector<std::string> end = footer(width, paint);
  const std::size_t taken = lines.size() + end.size();
  const std::size_t room = size.height > taken + 2 ? size.height - taken : 2;
  std::vector<std::string> middle;
  if (showsKeys_) {
    middle = keyLines(width);
    middle.resize(std::min(middle.size(), room));
  } else if (width >= kWide) {
    const std::size_t pane = width * 2 / 5;
    const std::size_t left = width - pane - 2;
    middle = list(left, room, paint);
    const std::vector<std::string> side = detail(pane, room, paint);
    for (std::size_t i = 0; i < side.size(); ++i) {
      if (i == middle.size()) middle.emplace_back(left, ' ');
      middle[i] += "  " + side[i];
    }
  } else {
    middle = showsDetail_ ? detail(width, room, paint) : list(width, room, paint);
  }
  lines.insert(lines.end(), middle.begin(), middle.end());
  lines.insert(lines.end(), end.begin(), end.end());
  lines.resize(std::min(lines.size(), std::max<std::size_t>(1, size.height)));
  return lines;
}

}  // namespace radio
