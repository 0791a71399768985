// SPDX-License-Identifier: Apache-2.0
// The board: a responder that observes its stations and says what is to be drawn. Everything here runs on the main queue.
#pragma once

#include "catalogue.h"
#include "keys.h"
#include "layout.h"
#include "prompt.h"
#include "saved_state.h"
#include "screen.h"
#include "station.h"
#include "terminal.h"
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/interface/responder.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace radio {

class Board : public havrin::Object<Board, havrin::UIResponder> {
 public:
  /// `stations` of Station, read from `source`, without so many that were skipped.
  Board(const havrin::NSArray& stations, std::string source, std::size_t skipped);

  /// Takes over what was saved, and greets. Before it observes.
  void restore(const SavedState& state);
  /// What is to be saved.
  [[nodiscard]] SavedState state() const;

  /// Starts to observe the stations that studios will change. Before they do.
  void observe(const havrin::NSArray& live);

  /// A key that was typed. Result: false when the board is to end.
  bool press(const Keystroke& key);

  /// What is on the screen now: as many lines as it has room for.
  [[nodiscard]] std::vector<std::string> lines(Terminal::Size size, const Paint& paint);

  /// True once after something that is drawn has changed: after a key at once, for the studios ten times a second.
  [[nodiscard]] bool takeChange() { return std::exchange(hasChanged_, false); }

  /// Shows a line of text until a key is typed.
  void say(std::string text);

  /// The link of the selected station; empty for none.
  [[nodiscard]] std::string selectedLink();
  /// Selects the station of that link, where there is one.
  void select(std::string_view link);

 private:
  void note(Station& station, const havrin::NSDictionary& change);
  void applySearch();
  void refresh();
  void type(const Keystroke& key);
  void command(const Keystroke& key);
  void runCommand(std::string_view letter);
  void openPrompt(Prompt::Kind kind, std::string text);
  void enter();
  void leave();
  void moveTo(std::int64_t row);
  void moveTo(const Station& station);
  void goTo(const std::string& number);
  void open();
  void mark();
  void hide();
  void share();
  void recolour(const std::string& typed);
  [[nodiscard]] Station* selected();
  void paintGenre(const std::string& genre, const havrin::Strong<havrin::UIColor>& colour);
  [[nodiscard]] std::vector<std::string> header(std::size_t width, const Paint& paint) const;
  [[nodiscard]] std::vector<std::string> list(std::size_t width, std::size_t rows, const Paint& paint);
  [[nodiscard]] std::vector<std::string> detail(std::size_t width, std::size_t rows, const Paint& paint);
  [[nodiscard]] std::vector<std::string> footer(std::size_t width, const Paint& paint) const;

  Catalogue catalogue_;
  havrin::Strong<havrin::NSMutableArray> opened_;  // the stations opened last, the newest first
  std::string source_;
  std::size_t skipped_;
  SavedState kept_;  // marks and colours, also those of stations and genres that are not on this board
  Filter filter_;
  Prompt prompt_;
  std::string note_;
  bool hasChanged_ = true;
  bool showsKeys_ = false;
  bool showsDetail_ = false;
  std::size_t cursor_ = 0;  // in what is visible
  std::size_t top_ = 0;     // the first row on the screen
  std::size_t page_ = 1;    // the rows on the screen when it was last drawn

 public:
  using Members =
      havrin::List<havrin::Method<"applySearch", &Board::applySearch>, havrin::Method<"refresh", &Board::refresh>>;
};

}  // namespace radio
