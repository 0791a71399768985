// SPDX-License-Identifier: Apache-2.0
// A board of radio stations in a terminal: what an application does with the library, on one screen.
#include "file_watch.h"
#include "journal.h"
#include "loading.h"
#include "options.h"
#include "saved_state.h"
#include "screen.h"
#include "session.h"
#include "system_error.h"
#include "terminal.h"
#include "terminal_kind.h"
#include <HavrinFoundation/frame/log.h>
#include <HavrinFoundation/frame/test_flag.h>
#include <HavrinFoundation/links/app_identity.h>
#include <HavrinFoundation/links/utm_parameters.h>
#include <HavrinFoundation/platform/application/process_info.h>
#include <HavrinFoundation/platform/base/clock.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
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

// Where the state is kept, if anywhere. Under a test harness only where --state says.
std::optional<StateFile> stateFile(const Options& options) {
  if (options.keepsNoState) return std::nullopt;
  const bool isTest = havrin::isExecutingTests(*havrin::NSProcessInfo::processInfo());
  const std::string path = options.stateFile.value_or(isTest ? "" : defaultStateFile());
  if (!path.empty()) return StateFile(path);
  if (!isTest) {
    std::fprintf(stderr, "radio: no place for the state: neither XDG_STATE_HOME nor HOME is set (--state FILE)\n");
  }
  return std::nullopt;
}

int save(const SavedState& base, const SavedState& state, const StateFile& file, Journal& journal) {
  const SaveResult saved = saveState(base, state, file);
  if (!saved.problem.empty()) {
    std::fprintf(stderr, "radio: cannot save the state as %s: %s\n", file.path().c_str(), saved.problem.c_str());
    return 1;
  }
  if (saved.wasMerged) {
    std::fprintf(stderr,
                 "radio: another board has saved %s meanwhile: the marks and colours of both are kept, search and "
                 "filter are this board's\n",
                 file.path().c_str());
  }
  journal.note("state", "saved as " + file.path());
  return 0;
}

// Stations from standard input, keys from the terminal all the same.
void takeKeysFromTerminal() {
  const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC);
  if (terminal < 0) return;
  (void)dup2(terminal, STDIN_FILENO);
  ::close(terminal);
}

void noteLoaded(Journal& journal, const LoadedStations& loaded) {
  for (const std::string& reason : loaded.skipped) journal.note("stations", "skipped: " + reason);
  journal.note("stations", "stations read: " + std::to_string(loaded.stations->count()) +
                               ", entries skipped: " + std::to_string(loaded.skipped.size()));
}

// Boards one after the other: a new one each time the files have changed. Result: the state of the last.
SavedState runBoards(const Options& options, const Paint& paint, Journal& journal, LoadedStations loaded,
                     SavedState state, std::string note) {
  Terminal terminal;
  journal.hold();
  FileWatch watch(options.stationsFiles);
  const double end = options.seconds ? havrin::monotonicSeconds() + *options.seconds : HUGE_VAL;
  std::vector<Keystroke> keys = keysOf(options.keys.value_or(""));
  for (std::string selected;;) {
    Session session(loaded, options, journal, state, note);
    session.select(selected);
    auto changed = session.runOnTerminal(terminal, paint, watch, end, std::exchange(keys, {}));
    state = session.state();
    if (!changed) return state;
    selected = session.selectedLink();
    loaded = *std::move(changed);
    noteLoaded(journal, loaded);
    note = "The stations have changed and were read anew.";
  }
}

int run(Options options) {
  if (options.link) return showLink(*options.link);
  if (options.stationsFiles.empty()) options.stationsFiles.push_back(shippedFile());
  Journal journal(options.verbose);
  const LoadedStations loaded = loadStations(options.stationsFiles);
  if (!loaded.problem.empty()) {
    std::fprintf(stderr, "radio: cannot read the stations from %s\n", loaded.problem.c_str());
    return 2;
  }
  noteLoaded(journal, loaded);
  if (!isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) && std::ranges::count(options.stationsFiles, "-") > 0)
    takeKeysFromTerminal();

  const std::optional<StateFile> file = stateFile(options);
  const RestoredState restored = file ? restoreState(*file) : RestoredState();
  if (!restored.problem.empty()) std::fprintf(stderr, "radio: %s\n", restored.problem.c_str());
  const std::string note = restored.problem.empty() ? "" : "Starting fresh: " + restored.problem;
  const Depth automatic = Terminal::takesControls() ? terminalDepth() : Depth::plain;
  const Paint paint(options.colours == Colours::always  ? Depth::trueColour
                    : options.colours == Colours::never ? Depth::plain
                                                        : automatic);
  SavedState state;
  if (Terminal::isPresent() && !options.once) {
    state = runBoards(options, paint, journal, loaded, restored.state, note);
  } else {
    Session session(loaded, options, journal, restored.state, note);
    session.runOnce(paint);
    state = session.state();
  }
  journal.release();
  return file && restored.mayBeSaved ? save(restored.state, state, *file, journal) : 0;
}

}  // namespace

int main(int count, char** words) {
  std::setlocale(LC_CTYPE, "C.UTF-8");  // NOLINT(concurrency-mt-unsafe): there are no threads yet
  const auto read = readOptions(count, words);
  if (const auto* answer = std::get_if<Answer>(&read)) {
    std::fputs(answer->text.c_str(), answer->status ? stderr : stdout);
    return answer->status;
  }
  havrin::kHLogSubsystem = "havrin-radio";
  const Options& options = std::get<Options>(read);
  if (options.showsVersion) {
    std::printf("radio %s\n", havrin::appAndBuildVersionString(*havrin::NSBundle::mainBundle()).c_str());
    return 0;
  }
  int status = run(options);
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
    const std::string why = errorText();
    std::fprintf(stderr, "radio: cannot write to standard output: %s\n", why.c_str());
    status = 1;
  }
  if (const int signal = Terminal::endedBy()) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
  }
  return status;
}
