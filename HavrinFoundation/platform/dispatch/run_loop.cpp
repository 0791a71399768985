// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/dispatch/loop_diagnosis.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop_state.h>
#include <HavrinFoundation/platform/dispatch/thread.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <pthread.h>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {
namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();

constinit thread_local RunLoopState* ofThisThread [[gnu::tls_model("initial-exec")]] = nullptr;

// Every run loop there is.
struct LoopRegistry {
  os_unfair_lock lock;
  std::vector<RunLoopState*> loops HAVRIN_THREAD_SAFETY(guarded_by(lock));

  static LoopRegistry& shared() {
    static LoopRegistry& registry = *new LoopRegistry;
    return registry;
  }
};

void endForThisThread(void* owner) {
  const std::unique_ptr<std::shared_ptr<RunLoopState>> loop(static_cast<std::shared_ptr<RunLoopState>*>(owner));
  (*loop)->end();
  ofThisThread = nullptr;
}

RunLoopState& makeForThisThread() {
  // Not a thread_local with a destructor: work that is destroyed when the thread ends may ask for the loop again.
  static const pthread_key_t kKey = [] {
    pthread_key_t key;
    if (pthread_key_create(&key, &endForThisThread) != 0) throw std::bad_alloc();
    return key;
  }();
  auto owner = std::make_unique<std::shared_ptr<RunLoopState>>(new RunLoopState(RunLoopState::Kind::kThread));
  if (pthread_setspecific(kKey, owner.get()) != 0) throw std::bad_alloc();
  return **owner.release();
}

RunLoopState& mainLoop() {
  static const auto& loop = *new std::shared_ptr<RunLoopState>(new RunLoopState(RunLoopState::Kind::kMain));
  return *loop;
}

void describeDelayedWork(std::string& text) {
  LoopRegistry& registry = LoopRegistry::shared();
  UnfairLockGuard guard(registry.lock);
  for (RunLoopState* loop : registry.loops) describeLoop(text, *loop, loop == ofThisThread);
}

}  // namespace

extern const DiagnosticsSection kDelayedWorkSection;
constinit const DiagnosticsSection kDelayedWorkSection{"delayed work", describeDelayedWork};

RunLoopState::RunLoopState(Kind kind)
    : isMain_(kind == Kind::kMain),
      threadNumber_(isMain_        ? getpid()
                    : diagnosing() ? gettid()
                                   : 0) {
  LoopRegistry& registry = LoopRegistry::shared();
  UnfairLockGuard guard(registry.lock);
  registry.loops.push_back(this);
}

RunLoopState::~RunLoopState() {
  LoopRegistry& registry = LoopRegistry::shared();
  UnfairLockGuard guard(registry.lock);
  std::erase(registry.loops, this);
}

RunLoop& RunLoop::main() { return mainLoop(); }

RunLoop& RunLoop::current() {
  if (ofThisThread == nullptr) [[unlikely]]
    ofThisThread = isMainThread() ? &mainLoop() : &makeForThisThread();
  return *ofThisThread;
}

bool RunLoop::runMode(std::string_view mode, double limit) {
  RunLoopState& self = RunLoopState::of(*this);
  if (self.modes.ended()) return false;
  const RunLoopModes modes = self.modes.modesFor(mode);
  if (!self.isAttached(modes)) return false;
  for (;;) {
    self.delays.runDue(modes);
    if (self.runPosted(modes)) return true;
    if (!(monotonicSeconds() < limit) || !self.isAttached(modes)) return true;
    self.waitUntil(modes, std::min(limit, LoopDelays::nextDeadline(modes).value_or(kNever)));
  }
}

void RunLoop::runUntil(double limit) {
  while (monotonicSeconds() < limit && runMode(NSDefaultRunLoopMode, limit)) {
  }
}

bool RunLoop::runDue(std::string_view mode) {
  RunLoopState& self = RunLoopState::of(*this);
  if (self.modes.ended()) return false;
  const RunLoopModes modes = self.modes.modesFor(mode);
  const bool ranDelayed = self.delays.runDue(modes);
  return self.runPosted(modes) || ranDelayed;
}

void RunLoop::schedule(double delaySeconds, Work&& work, std::string_view mode) {
  RunLoopState::of(*this).performAfterDelay(PerformKey(), delaySeconds, std::move(work), mode);
}

std::optional<double> RunLoop::nextDeadline(std::string_view mode) {
  ModeTable& modes = RunLoopState::of(*this).modes;
  return modes.ended() ? std::nullopt : LoopDelays::nextDeadline(modes.modesFor(mode));
}

bool RunLoop::post(Work&& work, std::string_view mode) {
  const ModeTable::Posted posted = RunLoopState::of(*this).modes.post(std::move(work), mode);
  if (posted == ModeTable::Posted::kFirst) wake();
  return posted != ModeTable::Posted::kRefused;
}

void RunLoop::addCommonMode(std::string_view mode) { RunLoopState::of(*this).modes.addCommonMode(mode); }

void RunLoop::wake() { RunLoopState::of(*this).wakeAnywhere(); }

void RunLoop::wakeAll() {
  LoopRegistry& registry = LoopRegistry::shared();
  UnfairLockGuard guard(registry.lock);
  for (RunLoopState* loop : registry.loops) loop->wake();
}

void RunLoop::waitForWake(double seconds, std::string_view mode) {
  RunLoopState& self = RunLoopState::of(*this);
  self.sleepFor(self.modes.modesFor(mode), seconds);
}

Strong<NSThread> RunLoop::thread() { return RunLoopState::of(*this).threadObject(); }

}  // namespace platform
}  // namespace havrin
