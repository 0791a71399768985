// SPDX-License-Identifier: Apache-2.0
// One station with everything that is known of it.
#pragma once

#include "layout.h"

#include <cstddef>
#include <string>
#include <vector>

namespace radio {

/// The link as it is shared: with the campaign that the sharing is counted under.
std::string shareLink(const Station& station);

/// The lines of the pane, each exactly `width` columns.
std::vector<std::string> detailLines(const Station& station, const Shown& shown, std::size_t width, const Paint& paint);

}  // namespace radio
