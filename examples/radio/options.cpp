// SPDX-License-Identifier: Apache-2.0
#include "options.h"

#include <HavrinFoundation/platform/decoding/json_decoder.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <string_view>
#include <utility>

namespace radio {

namespace {

constexpr const char* kHelp =
    R"(A board of radio stations.

  radio [options] [FILE...]

  --stations FILE               stations in JSON, JSON lines or a property list; "-" reads standard input; may be given
                                several times, FILE alone means the same; a file that changes is read anew
  --once                        draw the final state and exit (as without a terminal, or on a dumb one)
  --seconds N                   ends the board by itself after N seconds
  --verbose                     log on standard error which entries were skipped and why, and what was loaded and saved
  --version                     print the version and exit
  --colours never|always|auto   auto: on a terminal, unless NO_COLOR is set
  --keys TEXT                   keys typed by a script, for runs without a keyboard
  --link URL                    show a link and its campaign parameters, and exit
  --state FILE                  where the board keeps its state: favourites, colours, search
                                ($XDG_STATE_HOME/havrin-radio/board.state, or else
                                ~/.local/state/havrin-radio/board.state)
  --no-state                    neither restore nor save it

Keys: / searches (Enter keeps what was typed, Escape leaves), arrows, Page Up, Page Down, Home, End and the wheel move,
      Enter opens the station, ? shows all keys, Ctrl-Z suspends, q or Ctrl-C ends.
)";

Answer misuse(const std::string& what) { return {"radio: " + what + " (radio --help)\n", 2}; }

constexpr std::pair<std::string_view, std::optional<std::string> Options::*> kTexts[] = {
    {"--keys", &Options::keys}, {"--link", &Options::link}, {"--state", &Options::stateFile}};
constexpr std::pair<std::string_view, bool Options::*> kSwitches[] = {{"--once", &Options::once},
                                                                      {"--verbose", &Options::verbose},
                                                                      {"--version", &Options::showsVersion},
                                                                      {"--no-state", &Options::keepsNoState}};
constexpr std::pair<std::string_view, Colours> kColours[] = {
    {"never", Colours::never}, {"always", Colours::always}, {"auto", Colours::automatic}};

// The second of the pair that `name` is the first of; null for none.
template <class Value, std::size_t N>
const Value* valueOf(std::string_view name, const std::pair<std::string_view, Value> (&table)[N]) {
  const auto* const found =
      std::find_if(std::begin(table), std::end(table), [name](const auto& row) { return row.first == name; });
  return found == std::end(table) ? nullptr : &found->second;
}

}  // namespace

std::variant<Options, Answer> readOptions(int count, const char* const* words) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string_view word = words[i];
    const auto value = [&]() -> const char* { return i + 1 < count ? words[++i] : nullptr; };
    if (word == "--help" || word == "-h") return Answer{kHelp, 0};
    if (const auto* option = valueOf(word, kSwitches)) {
      options.*(*option) = true;
    } else if (const auto* taken = valueOf(word, kTexts)) {
      const char* given = value();
      if (!given || !*given) return misuse(std::string(word) + " takes a value");
      options.*(*taken) = given;
    } else if (word == "--stations") {
      const char* file = value();
      if (!file || !*file) return misuse("--stations takes a file, or \"-\" for standard input");
      options.stationsFiles.emplace_back(file);
    } else if (word == "--seconds") {
      const char* text = value();
      const auto seconds = havrin::JSONDecoder().tryDecode<double>(text ? text : "");
      if (!seconds || *seconds < 0) return misuse("--seconds takes a number that is not negative");
      options.seconds = *seconds;
    } else if (word == "--colours") {
      const char* choice = value();
      const Colours* colours = valueOf(choice ? choice : "", kColours);
      if (!colours) return misuse("--colours takes never, always or auto");
      options.colours = *colours;
    } else if (word.starts_with("-") && word != "-") {
      return misuse("there is no option " + std::string(word));
    } else {
      options.stationsFiles.emplace_back(word);
    }
  }
  return options;
}

}  // namespace radio
