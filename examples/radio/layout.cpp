// SPDX-License-Identifier: Apache-2.0
#include "layout.h"

#include <HavrinFoundation/colours/colour_arithmetic.h>
#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/runtime/clamp.h>
#include <HavrinFoundation/text/base36.h>
#include <HavrinFoundation/text/friendly_number.h>
#include <HavrinFoundation/text/sha256.h>

namespace radio {

using namespace havrin;

namespace {

constexpr std::size_t kMarks = 3;  // the cursor, the star, a blank
constexpr std::size_t kNarrow = 60;
constexpr std::size_t kLeastSong = 22;
constexpr double kDimmed = 0.65;

}  // namespace

std::string onAirText(Date since, Date now) {
  const std::int64_t days = numberOfCalendarDays(since, now);
  if (days < 0) return "soon";
  if (days == 0) return "today";
  if (days == 1) return "yesterday";
  return std::to_string(days) + " days";
}

Layout::Layout(std::size_t width) : width_(width) {
  const std::size_t room = width > kMarks + 1 ? width - kMarks - 1 : 0;
  name_ = width < kNarrow ? room / 2 : havrin::clamp(width / 4, ClosedRange<std::size_t>{14, 30});
  song_ = room - name_;
  if (width < kNarrow) return;
  const auto take = [this](std::size_t& column, std::size_t wanted) {
    if (song_ < kLeastSong + wanted) return;
    column = wanted;
    song_ -= wanted;
  };
  take(genre_, 13);
  take(listeners_, 8);
  take(number_, 6);
  take(onAir_, 13);
  take(plays_, 7);
  take(digest_, 9);
}

std::string Layout::heading(const Paint& paint) const {
  const std::string genre = genre_ ? fitted(" Genre", genre_) : "";
  const std::string onAir = onAir_ ? fitted(" On air", onAir_) : "";
  return paint.bold(fitted(fitted("", kMarks) + fitted("No.", number_) + fitted("Key", digest_) +
                               fitted("Station", name_ + 1) + genre +
                               fitted("Listen", listeners_ ? listeners_ - 1 : 0, true) + fitted("Plays", plays_, true) +
                               onAir + (listeners_ ? " " : "") + "Playing",
                           width_));
}

std::string Layout::row(const Station& station, bool isSelected, const Paint& paint) const {
  const Shown& shown = station.shown();
  const StationEntry& entry = station.entry();
  const bool isPlaying = !shown.song.empty();
  const Date since = fromMillisecondsSince1970<Date>(entry.onAirSince);
  const std::string birthday = isSameMonthAndDayAsToday(since) ? " *" : "";
  const auto cell = [](std::size_t width, auto&& text) { return width ? fitted(text(), width) : std::string(); };
  const auto number = [](std::size_t width, std::int64_t value) {
    return width ? fitted(friendlyNumber(value), width, true) : std::string();
  };

  const std::string left = std::string(isSelected ? "▸" : " ") + fitted(station.isFavourite() ? "★" : "", 2) +
                           cell(number_, [&] { return base36Value(entry.identifier); }) +
                           cell(digest_, [&] { return groupedSHA256(entry.link).value_or("").substr(0, 8); }) +
                           fitted(entry.name, name_) + " ";
  const std::string right = number(listeners_ ? listeners_ - 1 : 0, shown.listeners) + number(plays_, entry.plays) +
                            cell(onAir_, [&] { return " " + onAirText(since, Date::now()) + birthday; }) +
                            (listeners_ ? " " : "") + fitted(isPlaying ? shown.song : "off the air", song_);
  const std::string genre = genre_ ? " " + fitted(entry.genre, genre_ - 3) + " " : "";
  const std::string gap = genre_ ? " " : "";
  const auto painted = [&](const std::string& text) {
    if (isSelected) return paint.marked(text);
    return isPlaying ? text : paint.faint(text);
  };
  // Off the air: the colour is mixed with grey, the rest is faint.
  const Strong<UIColor> dimmed = isPlaying ? nullptr : blend(station.colour(), *UIColor::grayColor(), kDimmed);
  return painted(left) + paint.swatch(genre, dimmed ? *dimmed : station.colour()) + painted(gap + right);
}

}  // namespace radio
