// SPDX-License-Identifier: Apache-2.0
// The stations of a board: all of them, and those that a filter leaves, with their totals. Main queue only.
#pragma once

#include "search_index.h"
#include "station.h"
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace radio {

struct Filter {
  std::string text;   // a part of name, genre or song
  std::string genre;  // every genre when it is empty
  bool favouritesOnly = false;
};

class Catalogue {
 public:
  explicit Catalogue(const havrin::NSArray& stations);

  [[nodiscard]] const havrin::NSArray& all() const { return *all_; }
  [[nodiscard]] const std::vector<Station*>& visible() const { return visible_; }
  [[nodiscard]] bool isVisible(const Station& station) const { return isVisible_[station.shown().ordinal]; }
  [[nodiscard]] std::size_t onAir() const { return onAir_; }
  [[nodiscard]] std::int64_t listeners() const { return listeners_; }

  /// Makes visible what passes the filter.
  void apply(const Filter& filter);
  /// Puts the stations in another order, for the next `apply`.
  void shuffle();
  /// Leaves a station out, until `showAll`. For the next `apply`.
  void hide(Station& station);
  void showAll();
  /// Takes over what a studio has changed.
  void note(Station& station, std::int64_t listeners);
  void note(Station& station, std::string song);

  /// The first station of that number, or null.
  [[nodiscard]] Station* stationNumbered(std::int64_t number) const;
  /// The first station of that link, or null.
  [[nodiscard]] Station* stationLinked(std::string_view link) const;
  /// The genre after `genre` of those that have a station on the air; empty behind the last one.
  [[nodiscard]] std::string genreAfter(const std::string& genre) const;

 private:
  void setOrder(const havrin::NSArray& stations);

  havrin::Strong<havrin::NSArray> all_;
  havrin::Strong<havrin::NSArray> order_;  // all of them, as shuffled, without hidden ones
  std::vector<Station*> ordered_;          // the same
  bool isInFileOrder_ = true;
  std::vector<Station*> visible_;
  std::vector<bool> isVisible_;                  // by ordinal
  havrin::Strong<havrin::NSOrderedSet> genres_;  // in the order of their first stations
  SearchIndex index_;
  std::size_t onAir_ = 0;
  std::int64_t listeners_ = 0;
};

}  // namespace radio
