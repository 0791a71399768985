// SPDX-License-Identifier: Apache-2.0
// One station with everything that is known of it.
#pragma once

#include "layout.h"

#include <cstddef>
#include <string>
#include <vector>

namespace radio {

/// The lines of the pane, each exactly `width` columns.
std::vector<std::string> detailLines(const Station& station, std::size_t width, const Paint& paint);

}  // namespace radio
