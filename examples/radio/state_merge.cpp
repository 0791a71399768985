// SPDX-License-Identifier: Apache-2.0
#include "state_merge.h"

namespace radio {

namespace {

using Texts = std::set<std::string>;

Texts mergedTexts(const Texts& base, const Texts& ours, Texts theirs) {
  for (const std::string& text : base) {
    if (!ours.contains(text)) theirs.erase(text);
  }
  for (const std::string& text : ours) {
    if (!base.contains(text)) theirs.insert(text);
  }
  return theirs;
}

}  // namespace

SavedState merged(const SavedState& base, const SavedState& ours, const SavedState& theirs) {
  SavedState result = ours;
  result.favourites = mergedTexts(base.favourites, ours.favourites, theirs.favourites);
  result.unmarked = mergedTexts(base.unmarked, ours.unmarked, theirs.unmarked);
  result.genreColours = theirs.genreColours;
  for (const auto& [genre, code] : ours.genreColours) {
    const auto before = base.genreColours.find(genre);
    if (before == base.genreColours.end() || before->second != code) result.genreColours[genre] = code;
  }
  return result;
}

}  // namespace radio
