// SPDX-License-Identifier: Apache-2.0
#include "search_index.h"

#include "station.h"
#include <HavrinFoundation/platform/foundation/fast_enumeration.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <cstring>
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
  std::size_t station = 0;
  for (const char *at = texts_.data(), *last = at + texts_.size();
       (at =
            static_cast<const char*>(memmem(at, static_cast<std::size_t>(last - at), wanted.data(), wanted.size())));) {
    while (texts_.data() + ends_[station] <= at) ++station;
    found[station] = true;
    at = texts_.data() + ends_[station];
  }
  return found;
}

}  // namespace radio
