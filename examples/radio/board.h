// SPDX-License-Identifier: Apache-2.0
// The board: a responder that observes its stations and says what is to be drawn. Everything here runs on the main queue.
#pragma once

#include "keys.h"
#include "layout.h"
#include "saved_state.h"
#include "screen.h"
#include "station.h"
#include "terminal.h"
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/interface/responder.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace radio {

class Board : public havrin::Object<Board, havrin::UIResponder> {
 public:
  /// `stations` of Station; `redraw` is called when something has changed, at most ten times a second.
  Board(const havrin::NSArray& stations, std::string source, std::size_t skipped, std::function<void()> redraw);

  /// Takes over what was saved, and greets. Before it observes.
  void restore(const SavedState& state);
  /// What is to be saved.
  [[nodiscard]] SavedState state() const;

  /// Starts to observe the stations. Before any studio works on them.
  void observe();

  /// A key that was typed. Result: false when the board is to end.
  bool press(const Keystroke& key);

  /// What is on the screen now: as many lines as it has room for.
  [[nodiscard]] std::vector<std::string> lines(Terminal::Size size, const Paint& paint);

  /// Shows a line of text until a key is typed.
  void say(std::string text);

  [[nodiscard]] havrin::Strong<havrin::NSArray> stations() const { return all_; }

 private:
  void note(Station& station, const havrin::NSDictionary& change);
  void applySearch();
  void refresh();
  void type(const Keystroke& key);
  void command(const Keystroke& key);
  void runCommand(std::string_view letter);
  void moveTo(std::int64_t row);
  void leave();
  void mark();
  void recolour();
  [[nodiscard]] Station* selected();
  void paintGenre(const std::string& genre, std::string_view code);
  [[nodiscard]] std::vector<std::string> header(std::size_t width, const Paint& paint) const;
  [[nodiscard]] std::vector<std::string> list(std::size_t width, std::size_t rows, const Paint& paint);
  [[nodiscard]] std::vector<std::string> detail(std::size_t width, std::size_t rows, const Paint& paint);
  [[nodiscard]] std::vector<std::string> footer(std::size_t width, const Paint& paint) const;

  havrin::Strong<havrin::NSArray> all_;
  havrin::Strong<havrin::NSMutableArray> order_;  // all of them, as shuffled
  havrin::Strong<havrin::NSArray> visible_;       // those that the search finds and that are not hidden
  std::unordered_map<const Station*, Shown> shown_;
  std::string source_;
  std::size_t skipped_;
  std::function<void()> redraw_;
  SavedState kept_;  // marks and colours, also those of stations and genres that are not on this board
  std::string search_;
  std::string note_;
  bool favouritesOnly_ = false;
  bool searching_ = false;  // letters go to the search
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
