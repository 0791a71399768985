// SPDX-License-Identifier: Apache-2.0
// Finds stations by a part of their name, genre or song, in either case.
#pragma once

#include <HavrinFoundation/platform/foundation/array.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace radio {

/// The texts of all stations in one block of memory, so that a search over a million of them reads it once.
class SearchIndex {
 public:
  explicit SearchIndex(const havrin::NSArray& stations);

  /// For each station, in the order they were given, whether `text` occurs in it; all of them for empty text.
  [[nodiscard]] std::vector<bool> matches(std::string_view text) const;

 private:
  std::string texts_;              // in lower case, each followed by a zero byte
  std::vector<std::size_t> ends_;  // behind each station's zero byte
};

}  // namespace radio
