// SPDX-License-Identifier: Apache-2.0
#include "session.h"

#include "keys.h"
#include "studios.h"
#include <HavrinFoundation/frame/test_flag.h>
#include <HavrinFoundation/platform/application/process_info.h>
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/host_loop.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <algorithm>
#include <cstdio>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace radio {

using namespace havrin;

namespace {

std::string sourceOf(const Options& options) {
  if (options.stationsFiles.size() > 1) return std::to_string(options.stationsFiles.size()) + " files";
  const std::string& path = options.stationsFiles.front();
  return path == "-" ? "standard input" : path.substr(path.rfind('/') + 1);
}

// The live stations. None under a test harness: the board shows what the files say.
Strong<NSArray> liveOf(const NSArray& stations) {
  return isExecutingTests(*NSProcessInfo::processInfo()) ? makeArray({}) : Studios::live(stations);
}

}  // namespace

std::vector<Keystroke> keysOf(const std::string& typed) {
  KeyReader reader;
  std::vector<Keystroke> keys = reader.read(typed);
  for (Keystroke& key : reader.finish()) keys.push_back(std::move(key));
  return keys;
}

Session::Session(const LoadedStations& loaded, const Options& options, Journal& journal, const SavedState& state,
                 const std::string& note)
    : options_(options),
      journal_(journal),
      board_(make<Board>(*loaded.stations, sourceOf(options), loaded.skipped.size())),
      live_(liveOf(*loaded.stations)) {
  board_->restore(state);
  if (!note.empty()) board_->say(note);
  board_->observe(*live_);
}

void Session::runOnce(const Paint& paint) {
  bool goesOn = true;
  for (const Keystroke& key : keysOf(options_.keys.value_or(""))) goesOn = goesOn && board_->press(key);
  constexpr double kMomentSeconds = 0.6;
  if (live_->count() > 0) {
    const Studios studios(*live_, journal_);
    RunLoop::current().runUntil(monotonicSeconds() + kMomentSeconds);
  }
  while (const std::optional<double> due = mainLoopDeadline()) RunLoop::current().runUntil(*due);
  while (RunLoop::current().runDue()) {
  }
  for (const std::string& line : board_->lines({Terminal::size().width, 40}, paint)) std::printf("%s\n", line.c_str());
}

// The main queue lives inside this loop over descriptors.
std::optional<LoadedStations> Session::runOnTerminal(Terminal& terminal, const Paint& paint, FileWatch& watch,
                                                     double end, std::vector<Keystroke> keys) {
  const Studios studios(*live_, journal_);
  constexpr double kLongestWait = 0.5;  // the clock on the board moves on, the files are looked at
  constexpr double kKeyWait = 0.05;     // what follows Escape in a function key comes at once
  KeyReader reader;
  std::optional<Loading> reloading;
  double nextTick = 0;
  for (double now = 0; (now = monotonicSeconds()) < end && Terminal::endedBy() == 0;) {
    for (const Keystroke& key : std::exchange(keys, {})) {
      if (!board_->press(key)) return std::nullopt;
    }
    if (now >= nextTick && watch.look()) reloading.emplace(options_.stationsFiles);
    if (reloading && reloading->isDone()) {
      LoadedStations loaded = reloading->take();
      reloading.reset();
      if (loaded.problem.empty()) return loaded;
      board_->say("The stations stay as they were: " + loaded.problem);
    }
    if (const bool isTick = now >= nextTick; board_->takeChange() || isTick || terminal.isStale()) {
      if (isTick) nextTick = now + kLongestWait;
      terminal.draw(board_->lines(Terminal::size(), paint));
    }
    pollfd descriptors[] = {
        {mainLoopDescriptor(), POLLIN, 0}, {Terminal::signalDescriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    const double wait = std::min(reader.isWaiting() ? kKeyWait : kLongestWait, end - now);
    const int ready = poll(descriptors, 3, static_cast<int>(1000 * wait));
    terminal.takeSignals();
    drainMainLoop();
    if (ready == 0) keys = reader.finish();
    if (ready > 0 && (descriptors[2].revents & ~POLLIN)) return std::nullopt;  // the terminal is gone
    if (ready > 0 && descriptors[2].revents) keys = reader.read(terminal.typed());
  }
  return std::nullopt;
}

}  // namespace radio
