// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/suggestion.h>

#include <HavrinFoundation/platform/object/runtime_internal.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

namespace havrin {
inline namespace platform {
namespace {

constexpr std::size_t kMostChanges = 2;

// How many letters are inserted, removed or replaced to make one text of the other.
std::size_t changesBetween(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] != b[j]);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string suggestion(const ClassObject& cls, std::string_view name) {
  std::string_view nearest;
  std::size_t least = std::min(kMostChanges, name.size() / 2) + 1;
  for (const std::string_view known : selectorNames(cls)) {
    const std::size_t changes = changesBetween(name, known);
    if (changes >= least) continue;
    least = changes;
    nearest = known;
  }
  return nearest.empty() ? "" : std::string("; did you mean \"").append(nearest).append("\"?");
}

}  // namespace platform
}  // namespace havrin
