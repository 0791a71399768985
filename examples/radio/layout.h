// SPDX-License-Identifier: Apache-2.0
// Where things stand on a board of some width.
#pragma once

#include "screen.h"
#include "station.h"
#include <HavrinFoundation/platform/time/date.h>

#include <cstddef>
#include <string>

namespace radio {

/// The columns of the list, the most important first; a width of 0 for those that have no room. The name of a station
/// and what it plays are always there.
class Layout {
 public:
  explicit Layout(std::size_t width);

  [[nodiscard]] std::string heading(const Paint& paint) const;
  /// One line, exactly as wide as the layout.
  [[nodiscard]] std::string row(const Station& station, bool isSelected, const Paint& paint) const;

 private:
  std::size_t width_;
  std::size_t name_;
  std::size_t genre_ = 0;
  std::size_t listeners_ = 0;
  std::size_t number_ = 0;
  std::size_t onAir_ = 0;
  std::size_t plays_ = 0;
  std::size_t digest_ = 0;
  std::size_t song_;
};

/// How long a station has been on the air: "today", "12 days".
std::string onAirText(havrin::Date since, havrin::Date now);

}  // namespace radio
