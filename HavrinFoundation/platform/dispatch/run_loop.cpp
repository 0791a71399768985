#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/base/futex.h>
#include <HavrinFoundation/platform/dispatch/host_descriptor.h>
#include <HavrinFoundation/platform/dispatch/main_queue_state.h>
#include <HavrinFoundation/platform/dispatch/run_loop_mode.h>
#include <HavrinFoundation/platform/dispatch/thread.h>

#include <pthread.h>

#include <algorithm>
#include <limits>
#include <new>
#include <string>

namespace havrin::inline platform {
namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();

constinit thread_local RunLoop* ofThisThread [[gnu::tls_model("initial-exec")]] = nullptr;

// Every run loop there is.
struct Registry {
  os_unfair_lock lock;
  std::vector<RunLoop*> loops;  // guarded by the lock

  static Registry& shared() {
    static Registry& registry = *new Registry;
    return registry;
  }
};

}  // namespace

RunLoop::RunLoop(Kind kind) : isMain_(kind == Kind::kMain) {
  modes_.push_back(std::make_unique<RunLoopMode>(NSRunLoopCommonModes));
  modes_.push_back(std::make_unique<RunLoopMode>(NSDefaultRunLoopMode));
  defaultMode_ = modes_.back().get();
  defaultMode_->isCommon = true;
  delayedModes_.push_back(defaultMode_);

  Registry& registry = Registry::shared();
  UnfairLockGuard guard(registry.lock);
  registry.loops.push_back(this);
}

RunLoop::~RunLoop() {
  Registry& registry = Registry::shared();
  UnfairLockGuard guard(registry.lock);
  std::erase(registry.loops, this);
}

RunLoop& RunLoop::main() {
  static const auto& loop = *new std::shared_ptr<RunLoop>(new RunLoop(Kind::kMain));
  return *loop;
}

RunLoop& RunLoop::current() {
  if (ofThisThread == nullptr) [[unlikely]]
    ofThisThread = isMainThread() ? &main() : &makeForThisThread();
  return *ofThisThread;
}

RunLoop& RunLoop::makeForThisThread() {
  // Not a thread_local with a destructor: work that is destroyed when the thread ends may ask for the loop again.
  static const pthread_key_t kKey = [] {
    pthread_key_t key;
    if (pthread_key_create(&key, &RunLoop::endForThisThread) != 0) throw std::bad_alloc();
    return key;
  }();
  auto owner = std::make_unique<std::shared_ptr<RunLoop>>(new RunLoop(Kind::kThread));
  if (pthread_setspecific(kKey, owner.get()) != 0) throw std::bad_alloc();
  return **owner.release();
}

void RunLoop::endForThisThread(void* owner) {
  const std::unique_ptr<std::shared_ptr<RunLoop>> loop(static_cast<std::shared_ptr<RunLoop>*>(owner));
  (*loop)->end();
  ofThisThread = nullptr;
}

// What is destroyed here may arrange and post more: it is refused, and destroyed at once.
void RunLoop::end() {
  std::vector<std::unique_ptr<RunLoopMode>> modes;
  Strong<NSObject> thread;
  {
    UnfairLockGuard guard(lock_);
    ended_ = true;
    delayedModes_.clear();
    modes.swap(modes_);
    std::swap(thread, thread_);
  }
}

RunLoopMode& RunLoop::modeNamed(std::string_view name) {
  for (const std::unique_ptr<RunLoopMode>& mode : modes_) {
    if (mode->name == name) return *mode;
  }
  return *modes_.emplace_back(std::make_unique<RunLoopMode>(name));
}

RunLoop::Modes RunLoop::modesFor(std::string_view name) {
  UnfairLockGuard guard(lock_);
  RunLoopMode& named = modeNamed(name);
  return {&named, named.isCommon ? modes_.front().get() : nullptr};
}

void RunLoop::addCommonMode(std::string_view mode) {
  UnfairLockGuard guard(lock_);
  if (!ended_) modeNamed(mode).isCommon = true;
}

// The delayed work of a mode, which is a mode to cancel in from now on.
DelayedPerforms& RunLoop::delayedIn(std::string_view mode) {
  if (mode == NSDefaultRunLoopMode) return defaultMode_->delayed;
  RunLoopMode* named = modesFor(mode).named;
  if (std::find(delayedModes_.begin(), delayedModes_.end(), named) == delayedModes_.end()) {
    delayedModes_.push_back(named);
  }
  return named->delayed;
}

bool RunLoop::runMode(std::string_view mode, double limit) {
  if (ended_) return false;
  const Modes modes = modesFor(mode);
  if (!isAttached(modes)) return false;
  for (;;) {
    runDelayed(modes);
    if (runPosted(modes)) return true;
    if (!(monotonicSeconds() < limit) || !isAttached(modes)) return true;
    waitUntil(modes, std::min(limit, deadlineOf(modes).value_or(kNever)));
  }
}

void RunLoop::runUntil(double limit) {
  while (monotonicSeconds() < limit && runMode(NSDefaultRunLoopMode, limit)) {
  }
}

bool RunLoop::runDue(std::string_view mode) {
  if (ended_) return false;
  const Modes modes = modesFor(mode);
  const bool ranDelayed = runDelayed(modes);
  return runPosted(modes) || ranDelayed;
}

bool RunLoop::runDelayed(const Modes& modes) {
  RunLoopMode* mode = modeOfFirst(modes);
  if (mode == nullptr) return false;
  const double now = monotonicSeconds();
  const std::uint64_t firstNewRank = nextRank_;
  bool ran = false;
  for (; mode != nullptr; mode = modeOfFirst(modes)) {
    const DueTime due = *mode->delayed.first();
    if (due.deadline > now || due.rank >= firstNewRank) break;
    Work work = mode->delayed.takeFirst();
    work.run();
    ran = true;
  }
  return ran;
}

// One batch: what was there at the beginning. Each closure is taken out by itself, so that a nested loop goes on with
// the rest, and an exception leaves it where it is.
bool RunLoop::runPosted(const Modes& modes) {
  bool ran = false;
  for (RunLoopMode* mode : {modes.named, modes.common}) {
    if (mode == nullptr) continue;
    std::size_t left = 0;
    {
      UnfairLockGuard guard(lock_);
      left = mode->posted.size();
    }
    for (; left > 0; --left) {
      Work work;
      {
        UnfairLockGuard guard(lock_);
        if (mode->posted.empty()) break;
        work = mode->posted.pop();
      }
      work.run();
      ran = true;
    }
  }
  return (runsMainQueue(modes) && MainQueueState::shared().drain()) || ran;
}

// Whichever of the two modes has the work that is due first; null when neither has any.
RunLoopMode* RunLoop::modeOfFirst(const Modes& modes) {
  const std::optional<DueTime> named = modes.named->delayed.first();
  if (modes.common == nullptr || modes.common->delayed.size() == 0) return named ? modes.named : nullptr;
  return !named || *modes.common->delayed.first() < *named ? modes.common : modes.named;
}

std::optional<double> RunLoop::deadlineOf(const Modes& modes) {
  RunLoopMode* mode = modeOfFirst(modes);
  return mode == nullptr ? std::nullopt : std::optional(mode->delayed.first()->deadline);
}

bool RunLoop::isAttached(const Modes& modes) {
  if (runsMainQueue(modes) && !MainQueueState::shared().isDraining()) return true;
  UnfairLockGuard guard(lock_);
  for (const RunLoopMode* mode : {modes.named, modes.common}) {
    if (mode != nullptr && (mode->sources > 0 || mode->delayed.size() > 0 || !mode->posted.empty())) return true;
  }
  return false;
}

bool RunLoop::hasPosted(const Modes& modes) {
  if (runsMainQueue(modes) && MainQueueState::shared().canDrain()) return true;
  UnfairLockGuard guard(lock_);
  return !modes.named->posted.empty() || (modes.common != nullptr && !modes.common->posted.empty());
}

void RunLoop::waitUntil(const Modes& modes, double deadline) {
  ClockSource* clock = installedClockSource();
  if (clock == nullptr) {
    sleep(modes, deadline - monotonicSeconds());
  } else if (hasPosted(modes) || clock->passTimeTo(deadline)) {
    return;
  } else {
    sleep(modes, kNever);
  }
}

// First it is made known that the loop sleeps, then it looks once more: whoever posts does so in the other order, so
// that one of the two sees the other.
void RunLoop::sleep(const Modes& modes, double seconds) {
  wakefulness_.store(kAsleep, std::memory_order_seq_cst);
  if (!hasPosted(modes)) futex::wait(wakefulness_, kAsleep, seconds);
  wakefulness_.store(kAwake, std::memory_order_relaxed);
}

void RunLoop::waitForWake(double seconds, std::string_view mode) { sleep(modesFor(mode), seconds); }

void RunLoop::wake() {
  if (wakefulness_.exchange(kAwake, std::memory_order_seq_cst) == kAsleep) futex::wake(wakefulness_, 1);
  if (HostDescriptor* host = host_.load(std::memory_order_seq_cst)) host->signal();
}

void RunLoop::wakeAll() {
  Registry& registry = Registry::shared();
  UnfairLockGuard guard(registry.lock);
  for (RunLoop* loop : registry.loops) loop->wake();
}

bool RunLoop::post(Work&& work, std::string_view mode) {
  Work refused;  // destroyed without the lock
  bool first = false;
  {
    UnfairLockGuard guard(lock_);
    if (ended_) {
      refused = std::move(work);
      return false;
    }
    WorkFifo& posted = modeNamed(mode).posted;
    first = posted.empty();
    posted.push(std::move(work));
  }
  if (first) wake();
  return true;
}

// Not-a-number is no delay.
double RunLoop::deadlineAfter(double delaySeconds) {
  return monotonicSeconds() + (delaySeconds > 0 ? delaySeconds : 0);
}

void RunLoop::performAfterDelay(const PerformKey& key, double delaySeconds, Work work, std::string_view mode) {
  if (ended_) return;
  const DueTime due{deadlineAfter(delaySeconds), nextRank_++};
  delayedIn(mode).schedule(key, due, std::move(work));
  tellHost(due.deadline);
}

bool RunLoop::postponePerform(const void* target, const void* selector, double delaySeconds) {
  if (ended_) return false;
  for (const RunLoopMode* mode : delayedModes_) {
    if (mode != defaultMode_ && mode->delayed.holds(target, selector)) return false;
  }
  const DueTime due{deadlineAfter(delaySeconds), nextRank_++};
  if (!defaultMode_->delayed.postpone(target, selector, due)) return false;
  tellHost(due.deadline);
  return true;
}

void RunLoop::cancelPerforms(const PerformKey& key, BlockView<bool(const void*)> sameArgument) {
  // By index: what is called or destroyed may arrange work in a further mode.
  for (std::size_t i = 0; i < delayedModes_.size(); ++i) delayedModes_[i]->delayed.cancel(key, sameArgument);
}

void RunLoop::cancelPerforms(const void* target) {
  for (std::size_t i = 0; i < delayedModes_.size(); ++i) delayedModes_[i]->delayed.cancel(target);
}

std::optional<double> RunLoop::nextDeadline(std::string_view mode) {
  return ended_ ? std::nullopt : deadlineOf(modesFor(mode));
}

void RunLoop::tellHost(double deadline) {
  if (HostDescriptor* host = host_.load(std::memory_order_relaxed)) host->expect(deadline);
}

Strong<NSThread> RunLoop::thread() {
  {
    UnfairLockGuard guard(lock_);
    if (thread_) return Strong<NSThread>(static_cast<NSThread*>(thread_.get()));
  }
  Strong<NSThread> made = make<NSThread>(*this);  // may build its class, so without the lock
  if (ended_) return made;
  UnfairLockGuard guard(lock_);
  if (!thread_) thread_ = made;
  return Strong<NSThread>(static_cast<NSThread*>(thread_.get()));
}

HostDescriptor& RunLoop::hostDescriptor() {
  if (HostDescriptor* made = host_.load(std::memory_order_relaxed)) return *made;
  auto* host = new HostDescriptor;
  host_.store(host, std::memory_order_seq_cst);
  // What was posted before anybody could hear of the descriptor.
  if (hasPosted(modesFor(NSDefaultRunLoopMode))) host->signal();
  if (const std::optional<double> deadline = nextDeadline()) host->expect(*deadline);
  return *host;
}

void RunLoop::reportToHost() {
  HostDescriptor& host = hostDescriptor();
  host.expectOnly(nextDeadline());
  if (hasPosted(modesFor(NSDefaultRunLoopMode))) host.signal();
}

struct RunLoopSource::State {
  State(std::shared_ptr<RunLoop> itsLoop, std::string_view itsMode, Block<void()> itsHandler)
      : loop(std::move(itsLoop)), mode(itsMode), handler(std::move(itsHandler)) {}

  const std::shared_ptr<RunLoop> loop;
  const std::string mode;
  Block<void()> handler;  // the loop's thread only; null when detached
  std::atomic<bool> signalled{false};
};

RunLoopSource::RunLoopSource(Block<void()> handler, std::string_view mode)
    : state_(std::make_shared<State>(RunLoop::current().shared_from_this(), mode, std::move(handler))) {
  if (!state_->handler) throwNullBlock();
  RunLoop& loop = *state_->loop;
  UnfairLockGuard guard(loop.lock_);
  ++loop.modeNamed(mode).sources;
}

RunLoopSource::~RunLoopSource() {
  state_->handler = nullptr;
  RunLoop& loop = *state_->loop;
  UnfairLockGuard guard(loop.lock_);
  if (!loop.ended_) --loop.modeNamed(state_->mode).sources;
}

void RunLoopSource::signal() {
  if (state_->signalled.exchange(true, std::memory_order_acq_rel)) return;
  state_->loop->perform(
      [state = state_] {
        state->signalled.store(false, std::memory_order_release);
        if (const Block<void()> handler = state->handler) handler();
      },
      state_->mode);
}

}  // namespace havrin::inline platform
