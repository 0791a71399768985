// SPDX-License-Identifier: Apache-2.0
#include "search_index.h"

#include "station.h"
#include <HavrinFoundation/platform/foundation/fast_enumeration.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <algorithm>
#include <cwctype>

namespace radio {

using namespace havrin;

namespace {

void appendLowered(std::string& lowered, std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const Scalar scalar = scalarAt(text, i);
    // A zero byte ends a station's text.
    appendScalar(lowered, scalar.value == 0 ? U' ' : static_cast<char32_t>(std::towlower(scalar.value)));
    i += scalar.length;
  }
}

}  // namespace

SearchIndex::SearchIndex(const NSArray& stations) {
  ends_.reserve(stations.count());
  for (NSObject* object : each(&stations)) {
    const StationEntry& entry = static_cast<const Station&>(*object).entry();
    for (const std::string* text : {&entry.name, &entry.genre, &entry.song}) {
      appendLowered(texts_, *text);
      texts_ += '\n';
    }
    texts_.back() = '\0';
    ends_.push_back(texts_.size());
  }
}

std::vector<bool> SearchIndex::matches(std::string_view text) const {
  std::string wanted;
  appendLowered(wanted, text);
  std::vector<bool> found(ends_.size(), wanted.empty());
  if (wanted.empty()) return found;
  auto end = ends_.begin();
  const std::string_view texts = texts_;
  for (std::size_t at = 0; (at = texts.find(wanted, at)) != std::string_view::npos; at = *end) {
    end = std::upper_bound(end, ends_.end(), at);
    found[static_cast<std::size_t>(end - ends_.begin())] = true;
  }
  return found;
}

}  // namespace radio
