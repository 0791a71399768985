// SPDX-License-Identifier: Apache-2.0
// What the board keeps from one run to the next: a keyed archive in a file.
#pragma once

#include "state_file.h"
#include <HavrinFoundation/dates/zero_uuid.h>
#include <HavrinFoundation/platform/base/uuid.h>
#include <HavrinFoundation/platform/time/date.h>

#include <map>
#include <optional>
#include <set>
#include <string>

namespace radio {

/// Stations are told apart by their links, so that marks survive a new stations file.
struct SavedState {
  std::set<std::string> favourites;
  std::set<std::string> unmarked;  // favourites of the stations file that are none any more
  std::string search;
  bool favouritesOnly = false;
  std::map<std::string, std::string> genreColours;  // codes as "#1F618D", of genres that were given another colour
  std::optional<havrin::Date> lastOpen;
  havrin::UUID savedBy = havrin::zero<havrin::UUID>();  // the board that saved it; all zero when none has
};

/// The file of the state unless the command line names one: "havrin-radio/board.state" in XDG_STATE_HOME, or else in
/// ~/.local/state. Empty when neither XDG_STATE_HOME, as an absolute path, nor HOME is set.
/// Source: XDG Base Directories 0.8.
std::string defaultStateFile();

struct RestoredState {
  SavedState state;        // a fresh one when there was none, or none that could be read
  std::string problem;     // not empty: what was wrong with the file, and where it is now
  bool mayBeSaved = true;  // false: saving could lose the content of the file
};

/// The state in the file. A damaged file is set aside.
RestoredState restoreState(const StateFile& file);

struct SaveResult {
  std::string problem;     // not empty: why the state could not be saved; then the file is as it was
  bool wasMerged = false;  // another board had saved since `base`, whose changes are kept (state_merge.h)
};

/// Saves `state`, which the file was restored to `base` for, under the file's lock.
SaveResult saveState(const SavedState& base, SavedState state, const StateFile& file);

}  // namespace radio
