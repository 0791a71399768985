// SPDX-License-Identifier: Apache-2.0
// One radio station: as an entry of a file, and as the object that the board observes.
#pragma once

#include "share.h"
#include <HavrinFoundation/platform/decoding/decoding.h>
#include <HavrinFoundation/platform/interface/ui_color.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace radio {

/// Under this key the decoder's user information may have a `std::atomic<std::size_t>*` that counts entries.
inline constexpr const char* kDecodedEntries = "decodedEntries";

/// A station as a file describes it.
struct StationEntry {
  std::int64_t identifier = 0;
  std::int64_t onAirSince = 0;  // milliseconds since 1970
  std::string name;
  std::string song;  // empty: off the air
  std::int64_t listeners = 0;
  std::int64_t plays = 0;
  std::string genre;
  std::string genreColour;
  std::string link;
  bool favourite = false;

  using Fields = havrin::FieldList<
      havrin::Field<"identifier", &StationEntry::identifier>, havrin::Field<"onAirSince", &StationEntry::onAirSince>,
      havrin::Field<"name", &StationEntry::name>, havrin::Field<"song", &StationEntry::song>,
      havrin::Field<"listeners", &StationEntry::listeners>, havrin::Field<"plays", &StationEntry::plays>,
      havrin::Field<"genre", &StationEntry::genre>, havrin::Field<"genreColour", &StationEntry::genreColour>,
      havrin::Field<"link", &StationEntry::link>, havrin::Field<"favourite", &StationEntry::favourite>>;

  /// The fields, and a colour code and a link that can be read.
  static havrin::Decoded<StationEntry> fromDecoder(havrin::Decoder& decoder);
};

/// What is shown of a station: kept up to date from the changes that are observed. Main queue only.
struct Shown {
  std::int64_t listeners;
  std::string song;
  std::size_t ordinal = 0;  // in the order of the files
};

/// A station on the board. The studios change `listeners` and `song` on threads of their own: the board
/// reads both from the changes that it observes, which it keeps in `shown`.
class Station : public havrin::Object<Station, havrin::NSObject> {
 public:
  explicit Station(const StationEntry& entry);

  [[nodiscard]] const StationEntry& entry() const { return entry_; }
  [[nodiscard]] Shown& shown() { return shown_; }
  [[nodiscard]] const Shown& shown() const { return shown_; }
  /// The method of the message `shareLink`.
  [[nodiscard]] havrin::Strong<havrin::NSString> shareLink() const;
  [[nodiscard]] const havrin::UIColor& colour() const { return *colour_; }
  void setColour(const havrin::Strong<havrin::UIColor>& colour) { colour_ = colour; }
  [[nodiscard]] bool isFavourite() const { return favourite_; }
  void setFavourite(bool favourite) { set<"favourite">(favourite); }
  void setListeners(std::int64_t listeners) { set<"listeners">(listeners); }
  void setSong(havrin::NSString* song) { set<"song">(song); }

 private:
  Shown shown_;  // before the entry: what a search over all stations reads is together
  StationEntry entry_;
  havrin::Strong<havrin::UIColor> colour_;
  havrin::Strong<havrin::NSString> song_;
  std::int64_t listeners_ = 0;
  bool favourite_ = false;

 public:
  using Protocols = havrin::List<Shareable>;
  using Members =
      havrin::List<havrin::Method<"shareLink", &Station::shareLink>,
                   havrin::Property<"listeners", &Station::listeners_>, havrin::Property<"song", &Station::song_>,
                   havrin::Property<"favourite", &Station::favourite_>>;
};

}  // namespace radio
