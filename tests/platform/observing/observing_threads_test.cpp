// SPDX-License-Identifier: Apache-2.0
// Observers and observed objects that come, change and go on several threads. Under the thread and address sanitizers
// these are the proof that nothing is read after it has gone.
#include "../../testing.h"
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>

#include <atomic>
#include <mutex>

using namespace havrin;

namespace {

constexpr std::uint64_t kBoth = NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld;

class Host : public Object<Host, NSObject> {
  std::int64_t name_ = 0;

 public:
  using Members = List<Property<"name", &Host::name_>>;
};

// A property whose reads and writes may meet, as an application's own locking would make it.
class Station : public Object<Station, NSObject> {
  std::atomic<std::int64_t> title_ = 0;
  std::mutex lock_;
  Strong<Host> host_ = make<Host>();

 public:
  std::int64_t title() const { return title_; }
  void setTitle(std::int64_t title) { title_ = title; }
  Strong<Host> host() {
    const std::lock_guard guard(lock_);
    return host_;
  }
  void setHost(Host* host) {
    Strong<Host> next(host);
    const std::lock_guard guard(lock_);
    std::swap(host_, next);
  }
  using Members = List<Method<"title", &Station::title>, Method<"setTitle:", &Station::setTitle>,
                       Method<"host", &Station::host>, Method<"setHost:", &Station::setHost>>;
};

class Watcher : public Object<Watcher, NSObject> {
  std::atomic<bool> alive_ = true;

 public:
  std::atomic<int> heard = 0;
  ~Watcher() override { alive_ = false; }
  void observe(NSString*, NSObject*, NSDictionary*, void*) {
    if (!alive_) ADD_FAILURE() << "called after its end";
    ++heard;
  }
  using Members = List<Method<"observeValueForKeyPath:ofObject:change:context:", &Watcher::observe>>;
};

// Runs both until `rounds` of the first are done.
void together(int rounds, const std::function<void(int)>& first, const std::function<void()>& second) {
  std::atomic<bool> done = false;
  std::thread other([&] {
    while (!done) second();
  });
  for (int i = 0; i < rounds; ++i) first(i);
  done = true;
  other.join();
}

constexpr int kRounds = 100'000;

}  // namespace

TEST(ObservingThreads, ObserversAreDestroyedWhileTheyAreTold) {
  const auto station = make<Station>();
  const auto title = makeString("title");
  std::int64_t value = 0;
  together(
      kRounds,
      [&](int i) {
        const auto watcher = make<Watcher>();
        send<"addObserver:forKeyPath:options:context:">(station, watcher, title, i % 2 ? 0 : kBoth, nullptr);
        if (i % 3) send<"removeObserver:forKeyPath:">(station, watcher, title);
      },
      [&] { send<"setTitle:">(station, ++value); });
  send<"setTitle:">(station, 0);
  EXPECT_FALSE(dispatchClass(station)->isNotifying());
}

TEST(ObservingThreads, ObjectsAreDestroyedWhileTheyChange) {
  const auto title = makeString("title");
  const auto watcher = make<Watcher>();
  std::atomic<NSObject*> slot = nullptr;
  Weak<Station> last;
  const auto exchange = [&slot](NSObject* next) {
    return Strong<Station>::adopt(static_cast<Station*>(slot.exchange(next)));
  };
  together(
      kRounds,
      [&](int i) {
        auto station = make<Station>();
        send<"addObserver:forKeyPath:options:context:">(station, watcher, title, i % 2 ? 0 : kBoth, nullptr);
        last = station;
        const Strong<Station> before = exchange(Strong<NSObject>(station).detach());
      },
      [&] {
        if (const Strong<Station> station = exchange(nullptr)) send<"setTitle:">(station, 1);
      });
  exchange(nullptr);
  EXPECT_FALSE(last.lock());
}

TEST(ObservingThreads, ObjectsOnTheWayAreReplacedWhileTheyChange) {
  const auto station = make<Station>();
  const auto path = makeString("host.name");
  const auto watcher = make<Watcher>();
  send<"addObserver:forKeyPath:options:context:">(station, watcher, path, 0, nullptr);
  const auto other = make<Watcher>();
  together(
      kRounds,
      [&](int i) {
        send<"setHost:">(station, i % 7 ? make<Host>() : Strong<Host>());
        if (i % 16 == 0) {
          send<"addObserver:forKeyPath:options:context:">(station, other, path, kBoth, nullptr);
          send<"removeObserver:forKeyPath:">(station, other, path);
        }
      },
      [&] {
        if (const Strong<Host> host = send<"host">(station)) send<"setName:">(host, 1);
      });
  const auto last = make<Host>();
  send<"setHost:">(station, last);
  watcher->heard = 0;
  send<"setName:">(last, 2);
  EXPECT_EQ(watcher->heard, 1);
  send<"removeObserver:forKeyPath:">(station, watcher, path);
  EXPECT_FALSE(dispatchClass(last)->isNotifying() || dispatchClass(station)->isNotifying());
}

TEST(ObservingThreads, WritersOfOnePathLeaveItWhereItLeads) {
  const auto path = makeString("host.name");
  for (int round = 0; round < 300; ++round) {
    const auto station = make<Station>();
    const auto watcher = make<Watcher>();
    send<"addObserver:forKeyPath:options:context:">(station, watcher, path, 0, nullptr);
    onThreads(3, [&] {
      for (int i = 0; i < 10; ++i) send<"setHost:">(station, make<Host>());
    });
    EXPECT_EQ(watcher->heard, 30);
    watcher->heard = 0;
    send<"setName:">(send<"host">(station), 1);
    EXPECT_EQ(watcher->heard, 1);
  }
}
