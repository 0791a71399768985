// SPDX-License-Identifier: Apache-2.0
#include "terminal.h"

#include "terminal_kind.h"
#include <HavrinFoundation/platform/application/process_info.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace radio {

namespace {

// The alternate screen, no cursor, no wrapping, the wheel as arrow keys; and all of it back.
constexpr std::string_view kEnter = "\x1b[?1049h\x1b[?25l\x1b[?7l\x1b[?1007h";
constexpr std::string_view kLeave = "\x1b[?1007l\x1b[?7h\x1b[?25h\x1b[?1049l";

void writeAll(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(STDOUT_FILENO, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

termios before;
bool changed = false;

void enter() {
  tcgetattr(STDIN_FILENO, &before);
  changed = true;
  termios raw = before;
  raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  raw.c_cc[VMIN] = 0;
  raw.c_cc[VTIME] = 0;
  tcsetattr(STDIN_FILENO, TCSADRAIN, &raw);
  writeAll(kEnter);
}

// What has been typed and not been read is dropped: it was meant for the board, not for the shell.
void leave() {
  if (!std::exchange(changed, false)) return;
  writeAll(kLeave);
  tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
}

volatile std::sig_atomic_t endingSignal = 0;
volatile std::sig_atomic_t isToSuspend = 0;
int signals = -1;

// A signal handler may be run by any thread; the descriptor wakes the one that waits for keys.
void noteSignal(int signal) {
  const int error = errno;
  if (signal == SIGTSTP) {
    isToSuspend = 1;
  } else if (signal != SIGWINCH) {
    endingSignal = signal;
  }
  constexpr std::uint64_t kOne = 1;
  (void)!::write(signals, &kOne, sizeof kOne);
  errno = error;
}

}  // namespace

Terminal::Terminal() : showsUTF8_(terminalShowsUTF8()) {
  if (signals < 0) signals = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGTSTP, SIGWINCH}) std::signal(signal, noteSignal);
  std::atexit(leave);
  enter();
}

Terminal::~Terminal() { leave(); }

int Terminal::endedBy() { return endingSignal; }

int Terminal::signalDescriptor() { return signals; }

void Terminal::takeSignals() {
  std::uint64_t count = 0;
  (void)!::read(signals, &count, sizeof count);
  if (isToSuspend == 0) return;
  isToSuspend = 0;
  leave();
  std::signal(SIGTSTP, SIG_DFL);
  std::raise(SIGTSTP);  // comes back when the shell lets the board go on
  std::signal(SIGTSTP, noteSignal);
  enter();
  drawn_.clear();
  drawnSize_ = {0, 0};
}

bool Terminal::takesControls() {
  const auto kind = havrin::NSProcessInfo::processInfo()->environmentValue("TERM");
  return isatty(STDOUT_FILENO) && kind && *kind != "dumb";
}

bool Terminal::isPresent() { return isatty(STDIN_FILENO) && takesControls(); }

Terminal::Size Terminal::size() {
  winsize window{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0) return {100, 30};
  return {window.ws_col, window.ws_row};
}

void Terminal::draw(const std::vector<std::string>& lines) {
  // A terminal that has changed its size may show anything.
  if (const Size now = size(); drawnSize_ != now) {
    drawn_.clear();
    drawnSize_ = now;
  }
  const bool isAllNew = drawn_.empty();
  std::string frame;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i < drawn_.size() && drawn_[i] == lines[i]) continue;
    // Erased first: behind a full line the cursor stays on its last column.
    frame += "\x1b[" + std::to_string(i + 1) + ";1H\x1b[K" + (showsUTF8_ ? lines[i] : inASCII(lines[i]));
  }
  if (isAllNew || lines.size() < drawn_.size()) {
    if (lines.size() < drawnSize_.height) frame += "\x1b[" + std::to_string(lines.size() + 1) + ";1H\x1b[J";
  }
  drawn_ = lines;
  writeAll(frame);
}

std::string Terminal::typed() const {
  char bytes[4096];
  const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
  return count > 0 ? std::string(bytes, static_cast<std::size_t>(count)) : std::string();
}

}  // namespace radio
