#include "options.h"

#include <charconv>
#include <cstring>
#include <string_view>

namespace radio {

namespace {

constexpr const char* kHelp =
    R"(A board of radio stations.

  radio [options] [STATIONS.json]

  --once                        draw the final state and exit (as without a terminal)
  --seconds N                   how long the board runs; 0: until q (30)
  --verbose                     say why entries of the stations file were skipped
  --colours never|always|auto   auto: on a terminal, unless NO_COLOR is set
  --keys TEXT                   keys typed by a script, for runs without a keyboard
  --link URL                    show a link and its campaign parameters, and exit

Keys: type to search, Backspace takes back, Enter shares the first station, Tab shuffles, * hides all but favourites,
      + makes the first station a favourite, # gives its genre another colour, Esc clears,
      q (with an empty search), Ctrl-D or Ctrl-C ends.
)";

Answer misuse(const std::string& what) { return {"radio: " + what + " (radio --help)\n", 2}; }

}  // namespace

std::variant<Options, Answer> readOptions(int count, const char* const* words) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string_view word = words[i];
    const auto value = [&]() -> const char* { return i + 1 < count ? words[++i] : nullptr; };
    if (word == "--help" || word == "-h") return Answer{kHelp, 0};
    if (word == "--once") {
      options.once = true;
    } else if (word == "--verbose") {
      options.verbose = true;
    } else if (word == "--seconds") {
      const char* text = value();
      const char* end = text ? text + std::strlen(text) : nullptr;
      if (!text || std::from_chars(text, end, options.seconds).ptr != end || !(options.seconds >= 0)) {
        return misuse("--seconds takes a number that is not negative");
      }
    } else if (word == "--colours") {
      const char* text = value();
      const std::string_view choice = text ? text : "";
      if (choice == "never") {
        options.colours = Colours::never;
      } else if (choice == "always") {
        options.colours = Colours::always;
      } else if (choice == "auto") {
        options.colours = Colours::automatic;
      } else {
        return misuse("--colours takes never, always or auto");
      }
    } else if (word == "--keys" || word == "--link") {
      const char* text = value();
      if (!text) return misuse(std::string(word) + " takes a value");
      (word == "--keys" ? options.keys : options.link) = text;
    } else if (word.starts_with("-") && word != "-") {
      return misuse("there is no option " + std::string(word));
    } else if (options.stationsFile.empty()) {
      options.stationsFile = word;
    } else {
      return misuse("one stations file at a time: " + options.stationsFile + " or " + std::string(word));
    }
  }
  return options;
}

}  // namespace radio
