// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/worker_pool.h>

#include <HavrinFoundation/platform/base/futex.h>
#include <HavrinFoundation/platform/dispatch/execution_frame.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <string_view>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace havrin {
inline namespace platform {
namespace {

constexpr std::size_t kMostThreads = 64;
constexpr double kIdleSeconds = 5;
constexpr auto kStandByTime = std::chrono::milliseconds(1);

// Signals are for the application's own threads; `start` runs with all of them blocked, and so does what it starts.
template <class Start>
void withSignalsBlocked(Start start) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  try {
    start();
  } catch (...) {
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    throw;
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

// The state letter behind the name in the kernel's line about the thread. Unknown counts as blocked.
bool isRunning(pid_t thread) {
  char path[48];
  std::snprintf(path, sizeof path, "/proc/self/task/%d/stat", thread);
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  char line[128];
  const ssize_t length = read(file, line, sizeof line);
  close(file);
  const std::string_view text(line, length < 0 ? 0 : static_cast<std::size_t>(length));
  const std::size_t name = text.rfind(')');
  return name != std::string_view::npos && name + 2 < text.size() && text[name + 2] == 'R';
}

}  // namespace

WorkerPool::WorkerPool()
    : QueueState("global", Lifetime::kProcess), processors_(std::max(1U, std::thread::hardware_concurrency())) {}

WorkerPool& WorkerPool::shared() {
  static WorkerPool& pool = *new WorkerPool;
  return pool;
}

bool WorkerPool::callAtOnce(BlockView<void()> block) {
  EnterQueue frame(*this, nullptr);
  block();
  return true;
}

void WorkerPool::append(Work&& work) {
  Help wanted = Help::kNone;
  {
    UnfairLockGuard guard(lock_);
    pending_.push(std::move(work));
    wanted = help();
  }
  getHelp(wanted);
}

// Whether to wake or start a thread for pending work, to run it or to stand by. That thread counts as busy at once.
WorkerPool::Help WorkerPool::help() {
  const bool someoneLooks = standingBy_ > 0 || chosen_ > 0 || starting_ > 0;
  if (pending_.empty() || (someoneLooks && busy() >= processors_)) return Help::kNone;
  if (idle_ > 0) {
    --idle_;
    ++chosen_;
    wakes_.fetch_add(1, std::memory_order_relaxed);
    return Help::kWake;
  }
  if (threads_.size() + starting_ >= kMostThreads) return Help::kNone;
  ++starting_;
  return Help::kStart;
}

void WorkerPool::getHelp(Help wanted) {
  if (wanted == Help::kWake) futex::wake(wakes_, 1);
  if (wanted != Help::kStart) return;
  try {
    withSignalsBlocked([this] { std::thread([this] { serve(); }).detach(); });
  } catch (const std::system_error&) {
    UnfairLockGuard guard(lock_);
    --starting_;
    // Without any thread the closures would never run.
    if (threads_.size() + starting_ == 0) throw;
  }
}

bool WorkerPool::isWorker() {
  UnfairLockGuard guard(lock_);
  return std::find(threads_.begin(), threads_.end(), gettid()) != threads_.end();
}

std::size_t WorkerPool::waiting() {
  UnfairLockGuard guard(lock_);
  return pending_.size();
}

void WorkerPool::serve() {
  pthread_setname_np(pthread_self(), "dispatch-worker");
  {
    UnfairLockGuard guard(lock_);
    --starting_;
    threads_.push_back(gettid());
  }
  EnterQueue frame(*this, nullptr);
  bool gotUp = true;
  for (;;) {
    Work work;
    switch (takeTurn(work, gotUp)) {
      case Turn::kRun:
        runQueued(std::move(work));
        gotUp = false;
        break;
      case Turn::kStandBy:
        gotUp = !standBy();
        break;
      case Turn::kWait:
        if (!waitForWork()) return;
        gotUp = true;
        break;
    }
  }
}

// A thread that has just woken and exceeds the number of processors stands by, or sleeps again; one that has run a
// closure goes on.
WorkerPool::Turn WorkerPool::takeTurn(Work& work, bool gotUp) {
  Help wanted = Help::kNone;
  {
    UnfairLockGuard guard(lock_);
    const bool tooMany = gotUp && busy() > processors_;
    if (pending_.empty() || (tooMany && standingBy_ > 0)) {
      ++idle_;
      return Turn::kWait;
    }
    if (tooMany) {
      ++standingBy_;
      return Turn::kStandBy;
    }
    work = pending_.pop();
    ++begun_;
    wanted = help();
  }
  getHelp(wanted);
  return Turn::kRun;
}

// Result: whether this thread is needed, because the busy ones are blocked; false when nothing is pending any more.
bool WorkerPool::standBy() {
  for (;;) {
    std::uint64_t begun = 0;
    std::vector<pid_t> others;
    {
      UnfairLockGuard guard(lock_);
      begun = begun_;
      others = threads_;
    }
    std::this_thread::sleep_for(kStandByTime);
    std::erase(others, gettid());
    const auto running = static_cast<std::size_t>(std::count_if(others.begin(), others.end(), isRunning));

    UnfairLockGuard guard(lock_);
    const bool blocked = begun == begun_ && running < processors_;
    if (pending_.empty() || blocked || busy() < processors_) {
      --standingBy_;
      return !pending_.empty();
    }
  }
}

// Sleeps until this thread is chosen to wake up. Result: false when it is to end instead.
bool WorkerPool::waitForWork() {
  bool inTime = true;
  for (;;) {
    std::uint32_t seen = 0;
    {
      UnfairLockGuard guard(lock_);
      if (chosen_ > 0) {
        --chosen_;
        return true;
      }
      if (!inTime) {
        --idle_;
        std::erase(threads_, gettid());
        return false;
      }
      seen = wakes_.load(std::memory_order_relaxed);
    }
    inTime = futex::wait(wakes_, seen, kIdleSeconds);
  }
}

}  // namespace platform
}  // namespace havrin
