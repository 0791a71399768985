// SPDX-License-Identifier: Apache-2.0
// A board of radio stations in a terminal: what an application does with the library, on one screen.
#include "board.h"
#include "keys.h"
#include "options.h"
#include "saved_state.h"
#include "screen.h"
#include "station_file.h"
#include "studios.h"
#include "terminal.h"
#include <HavrinFoundation/links/utm_parameters.h>
#include <HavrinFoundation/platform/application/process_info.h>
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/host_loop.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <cerrno>
#include <clocale>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

using namespace radio;

// The shipped stations stand beside the program.
std::string shippedFile() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return (program.parent_path() / "stations.json").string();
}

int showLink(const std::string& text) {
  const auto link = havrin::URL::fromString(text);
  if (!link) {
    std::fprintf(stderr, "radio: no link by RFC 3986: %s\n", text.c_str());
    return 2;
  }
  std::printf("%s\n", text.c_str());
  const auto campaign = havrin::fromUrl<havrin::UTMParameters>(link);
  if (!campaign) {
    std::printf("  no campaign parameters\n");
    return 0;
  }
  const std::pair<const char*, const std::optional<std::string>&> fields[] = {
      {"campaign", campaign->campaign}, {"content", campaign->content}, {"medium", campaign->medium},
      {"name", campaign->name},         {"source", campaign->source},   {"term", campaign->term}};
  for (const auto& [name, value] : fields) {
    if (value) std::printf("  %-10s %s\n", name, value->c_str());
  }
  return 0;
}

// The keys that a script types.
std::vector<Keystroke> keysOf(std::string_view typed) {
  KeyReader reader;
  std::vector<Keystroke> keys = reader.read(typed);
  for (Keystroke& key : reader.finish()) keys.push_back(std::move(key));
  return keys;
}

// Without a terminal: the script's keys are typed, the studios work for a moment, the final state is printed.
void runOnce(Board& board, const Options& options, const Paint& paint) {
  bool goesOn = true;
  for (const Keystroke& key : keysOf(options.keys.value_or(""))) goesOn = goesOn && board.press(key);
  constexpr double kMomentSeconds = 0.6;
  {
    const Studios studios(*Studios::live(*board.stations()));
    havrin::RunLoop::current().runUntil(havrin::monotonicSeconds() + kMomentSeconds);
  }
  while (havrin::RunLoop::current().runDue()) {
  }
  for (const std::string& line : board.lines({Terminal::size().width, 40}, paint)) std::printf("%s\n", line.c_str());
}

// The board in place until somebody ends it. The main queue lives inside this loop over descriptors.
void runOnTerminal(Board& board, const Options& options, const Paint& paint, bool& changed) {
  Terminal terminal;
  const Studios studios(*Studios::live(*board.stations()));
  KeyReader reader;
  std::vector<Keystroke> keys = keysOf(options.keys.value_or(""));
  const double end = options.seconds ? havrin::monotonicSeconds() + *options.seconds : HUGE_VAL;
  for (double now = 0; (now = havrin::monotonicSeconds()) < end && Terminal::endedBy() == 0;) {
    for (const Keystroke& key : std::exchange(keys, {})) {
      if (!board.press(key)) return;
    }
    changed = false;
    terminal.draw(board.lines(Terminal::size(), paint));
    pollfd descriptors[] = {{havrin::mainLoopDescriptor(), POLLIN, 0},
                            {Terminal::signalDescriptor(), POLLIN, 0},
                            {STDIN_FILENO, POLLIN, 0}};
    constexpr double kLongestWait = 0.5;  // the clock on the board moves on
    constexpr double kKeyWait = 0.05;     // what follows Escape in a function key comes at once
    const double wait = std::min(reader.isWaiting() ? kKeyWait : kLongestWait, end - now);
    const int ready = poll(descriptors, 3, static_cast<int>(1000 * wait));
    terminal.takeSignals();
    havrin::drainMainLoop();
    if (ready == 0) keys = reader.finish();
    if (ready > 0 && (descriptors[2].revents & ~POLLIN)) return;  // the terminal is gone
    if (ready > 0 && descriptors[2].revents) keys = reader.read(terminal.typed());
  }
}

// Gives the board its saved state. Result: where it is to be saved again, if at all.
std::optional<StateFile> restore(Board& board, const Options& options) {
  if (options.keepsNoState) return std::nullopt;
  const std::string path = options.stateFile.value_or(defaultStateFile());
  if (path.empty()) {
    std::fprintf(stderr, "radio: no place for the state: neither XDG_STATE_HOME nor HOME is set (--state FILE)\n");
    return std::nullopt;
  }
  const StateFile file(path);
  const RestoredState restored = restoreState(file);
  board.restore(restored.state);
  if (!restored.problem.empty()) {
    std::fprintf(stderr, "radio: %s\n", restored.problem.c_str());
    board.say("Starting fresh: " + restored.problem);
  }
  return restored.mayBeSaved ? std::optional(file) : std::nullopt;
}

int save(const Board& board, const StateFile& file) {
  const std::string problem = saveState(board.state(), file);
  if (problem.empty()) return 0;
  std::fprintf(stderr, "radio: cannot save the state as %s: %s\n", file.path().c_str(), problem.c_str());
  return 1;
}

int run(const Options& options) {
  if (options.link) return showLink(*options.link);
  const std::string file = options.stationsFile.empty() ? shippedFile() : options.stationsFile;
  const LoadedStations loaded = loadStations(file);
  if (!loaded.problem.empty()) {
    std::fprintf(stderr, "radio: cannot read the stations from %s\n", loaded.problem.c_str());
    return 2;
  }
  if (options.verbose) {
    for (const std::string& reason : loaded.skipped) std::fprintf(stderr, "radio: skipped: %s\n", reason.c_str());
  }

  const bool onTerminal = Terminal::isPresent() && !options.once;
  const bool colours =
      options.colours == Colours::always || (options.colours == Colours::automatic && Terminal::takesControls() &&
                                             !havrin::NSProcessInfo::processInfo()->environmentValue("NO_COLOR"));
  const Paint paint(colours);
  bool changed = false;
  const auto board = havrin::make<Board>(*loaded.stations, std::filesystem::path(file).filename().string(),
                                         loaded.skipped.size(), [&changed] { changed = true; });
  const std::optional<StateFile> kept = restore(*board, options);
  board->observe(*Studios::live(*board->stations()));
  if (onTerminal) {
    runOnTerminal(*board, options, paint, changed);
  } else {
    runOnce(*board, options, paint);
  }
  return kept ? save(*board, *kept) : 0;
}

}  // namespace

int main(int count, char** words) {
  std::setlocale(LC_CTYPE, "C.UTF-8");  // NOLINT(concurrency-mt-unsafe): there are no threads yet
  const auto read = readOptions(count, words);
  if (const auto* answer = std::get_if<Answer>(&read)) {
    std::fputs(answer->text.c_str(), answer->status ? stderr : stdout);
    return answer->status;
  }
  int status = run(std::get<Options>(read));
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
    const std::string why = std::generic_category().message(errno);
    std::fprintf(stderr, "radio: cannot write to standard output: %s\n", why.c_str());
    status = 1;
  }
  if (const int signal = Terminal::endedBy()) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
  }
  return status;
}
