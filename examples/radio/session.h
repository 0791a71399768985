// SPDX-License-Identifier: Apache-2.0
// One board on its stations, from the moment they are loaded until it ends or they are read anew.
#pragma once

#include "board.h"
#include "file_watch.h"
#include "journal.h"
#include "loading.h"
#include "options.h"
#include "saved_state.h"
#include "terminal.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace radio {

class Session {
 public:
  /// `state` is what the board begins with; `note` is shown until a key is typed, unless it is empty.
  Session(const LoadedStations& loaded, const Options& options, Journal& journal, const SavedState& state,
          const std::string& note);

  /// Without a terminal: the script's keys are typed, the studios work for a moment, the final state is printed.
  void runOnce(const Paint& paint);

  /// The board in place until somebody ends it, `end` has come or its files have changed. Result: the new stations in
  /// the last case. Files that cannot be read are named on the board, which goes on.
  std::optional<LoadedStations> runOnTerminal(Terminal& terminal, const Paint& paint, FileWatch& watch, double end,
                                              std::vector<Keystroke> keys);

  [[nodiscard]] SavedState state() const { return board_->state(); }
  /// The link of the station that is selected, and to select it anew.
  [[nodiscard]] std::string selectedLink() const { return board_->selectedLink(); }
  void select(const std::string& link) { board_->select(link); }

 private:
  const Options& options_;
  Journal& journal_;
  havrin::Strong<Board> board_;
  havrin::Strong<havrin::NSArray> live_;
};

/// The keys that a script types.
std::vector<Keystroke> keysOf(const std::string& typed);

}  // namespace radio
