// SPDX-License-Identifier: Apache-2.0
#include "detail.h"

#include <HavrinFoundation/colours/colour_arithmetic.h>
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/dates/shared_formatter.h>
#include <HavrinFoundation/links/utm_parameters.h>
#include <HavrinFoundation/platform/unicode/unicode.h>
#include <HavrinFoundation/text/attributed_strings.h>
#include <HavrinFoundation/text/base36.h>
#include <HavrinFoundation/text/friendly_number.h>
#include <HavrinFoundation/text/sha256_messages.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace radio {

using namespace havrin;

namespace {

constexpr std::size_t kLabel = 9;

// How many bytes of `text` its first UTF-16 units take.
std::size_t bytesOf(std::string_view text, std::uint64_t units) {
  std::size_t bytes = 0;
  for (std::uint64_t seen = 0; seen < units && bytes < text.size();) {
    const Scalar scalar = scalarAt(text, bytes);
    seen += scalar.value > 0xFFFF ? 2 : 1;
    bytes += scalar.length;
  }
  return bytes;
}

class Pane {
 public:
  Pane(std::size_t width, const Paint& paint) : width_(width), paint_(paint) {}

  // A label, and beside it the text over as many lines as it takes.
  void add(std::string_view label, std::string_view text) {
    const std::size_t room = width_ > kLabel ? width_ - kLabel : 1;
    for (const std::string& line : linesOf(text, room)) {
      lines_.push_back(paint_.faint(fitted(label, kLabel)) + fitted(line, room));
      label = "";
    }
  }
  void addSwatch(std::string_view label, const UIColor& colour) {
    const std::size_t room = width_ > kLabel ? width_ - kLabel : 1;
    const std::string code = hexString(colour).value_or("");
    lines_.push_back(paint_.faint(fitted(label, kLabel)) +
                     paint_.swatch(fitted(" " + code, std::min<std::size_t>(room, 10)), colour) +
                     std::string(room - std::min<std::size_t>(room, 10), ' '));
  }
  void addBlank() { lines_.emplace_back(width_, ' '); }
  // The first run, the link, is underlined.
  void addTitle(const NSAttributedString& text) {
    const std::string whole = fitted(utf8(*text.string()), width_);
    const std::string name = whole.substr(0, bytesOf(whole, text.attributesAtIndex(0).range.length));
    lines_.push_back(paint_.underlined(name) + paint_.bold(whole.substr(name.size())));
  }

  std::vector<std::string> lines() && { return std::move(lines_); }

 private:
  std::size_t width_;
  const Paint& paint_;
  std::vector<std::string> lines_;
};

// The station's name as a link, then what it plays.
Strong<NSMutableAttributedString> description(const Station& station) {
  const Shown& shown = station.shown();
  const auto link = makeDictionary({{makeString("link"), makeString(station.entry().link)}});
  auto text = fromOptionalString<NSMutableAttributedString>(station.entry().name, link);
  const std::optional<std::string> song = shown.song.empty() ? std::nullopt : std::optional(" plays " + shown.song);
  text->appendAttributedString(fromOptionalString<NSAttributedString>(song).get());
  return text;
}

std::string rangesOf(const NSAttributedString& text) {
  std::string ranges;
  const NSRange all = entireRange(text);
  for (std::uint64_t at = 0; at < all.length;) {
    const NSAttributedString::Run run = text.attributesAtIndex(at);
    at = run.range.location + run.range.length;
    ranges += (ranges.empty() ? "" : ", ") + std::to_string(run.range.location) + "-" + std::to_string(at) +
              (run.attributes->count() ? " link" : " plain");
  }
  return ranges;
}

}  // namespace

std::vector<std::string> detailLines(const Station& station, std::size_t width, const Paint& paint) {
  const Shown& shown = station.shown();
  const StationEntry& entry = station.entry();
  const Date since = fromMillisecondsSince1970<Date>(entry.onAirSince);
  const Strong<NSMutableAttributedString> text = description(station);
  const std::string shared = utf8(*station.shareLink());
  Pane pane(width, paint);
  pane.addTitle(*text);
  pane.add("ranges", rangesOf(*text));
  pane.addBlank();
  pane.add("number", base36Value(entry.identifier) + ", in decimal " + std::to_string(entry.identifier));
  pane.add("genre", entry.genre);
  pane.add("heard by", friendlyNumber(shown.listeners) + " now, " + friendlyNumber(entry.plays) + " plays");
  const std::string days = onAirText(since, Date::now());
  pane.add("on air", days.ends_with("days") ? "for " + days : days);
  pane.add("since", utf8(*rfc1123<NSDateFormatter>()->stringFromDate(make<NSDate>(since))));
  const Strong<NSString> digest = HAV_SHA_256(makeString(entry.link));
  pane.add("digest", digest ? utf8(*digest) : "none");
  pane.addBlank();
  pane.addSwatch("colour", station.colour());
  pane.addSwatch("inverse", *inverse(station.colour()));
  if (const auto mix = blend(station.colour(), *UIColor::whiteColor(), 0.5)) pane.addSwatch("tint", *mix);
  pane.addBlank();
  pane.add("share", shared);
  if (const auto campaign = fromUrl<UTMParameters>(URL::fromString(shared))) {
    pane.add("campaign", campaign->campaign.value_or("") + ", medium " + campaign->medium.value_or("") + ", source " +
                             campaign->source.value_or("") + ", term " + campaign->term.value_or(""));
  }
  return std::move(pane).lines();
}

}  // namespace radio
