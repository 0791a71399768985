// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/frame/diagnostics.h>
#include <HavrinFoundation/frame/rate_limits_messages.h>
#include <HavrinFoundation/frame/unfair_lock.h>
#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <regex>

using namespace havrin;

namespace {

class Station : public Object<Station, NSObject> {
 public:
  Strong<NSString> title;
  using Members = List<Property<"title", &Station::title>>;
};

class Board : public Object<Board, NSObject> {
 public:
  void redraw() {}
  Strong<NSObject> station;
  using Members = List<Method<"redraw", &Board::redraw>, Property<"station", &Board::station>>;
};

/// The part of this title, addresses as A and thread numbers as N.
std::string part(const char* title) {
  const std::string text = std::regex_replace(diagnostics(), std::regex("0x[0-9a-f]+"), "A");
  std::smatch found;
  EXPECT_TRUE(std::regex_search(text, found, std::regex("(^|\n)" + std::string(title) + "\n((  .*\n)*)"))) << text;
  return std::regex_replace(found[2].str(), std::regex("thread [0-9]+"), "thread N");
}

struct Diagnostics : testing::Test {
  Diagnostics() { switchTo("1"); }
  ~Diagnostics() override { switchTo("0"); }
  static void switchTo(const char* value) {
    setenv("HAVRIN_DIAGNOSIS", value, 1);
    diagnosisSwitch = DiagnosisSwitch::unread;
  }
  TestClock clock;
};

TEST_F(Diagnostics, ListWhatIsRegisteredAndWhatWaits) {
  EXPECT_EQ(part("observers") + part("awaited locks"), "  none\n  none\n");
  EXPECT_NE(part("images").find("  HavrinFoundation: NSObject(KeyValueCoding), NSDictionary("), std::string::npos);

  const auto board = make<Board>(), other = make<Board>();
  board->station = make<Station>();
  const auto add = [&](NSObject* observer, const char* path) {
    send<"addObserver:forKeyPath:options:context:">(board, observer, s(path), 0, nullptr);
  };
  add(other, "station.title");
  add(make<NSObject>(), "station");
  EXPECT_EQ(part("observers"),
            "  Board A station: Board A by \"station.title\", NSObject A (gone)\n"
            "  Station A title: Board A by \"station.title\"\n");

  send<"h_debounce:delay:">(board, selector<"redraw">, 0.25);
  RunLoop::current().performAfter(1, [] {});
  RunLoop::current().perform([] {});
  EXPECT_EQ(
      part("delayed work"),
      "  main thread: -[Board redraw] in 0.250 s\n  main thread: a closure in 1.000 s\n  main thread: 1 posted\n");
  std::thread([&] { EXPECT_EQ(part("delayed work"), "  main thread: 1 posted\n"); }).join();

  const DispatchQueue queue = dispatch_queue_create("writer", DISPATCH_QUEUE_SERIAL, dispatch_get_main_queue());
  for (int i = 0; i < 3; ++i) dispatch_async(queue, [] {});
  EXPECT_EQ(part("queues"), "  main: 1 waiting\n  global: 0 waiting\n  writer: 3 waiting\n");
  clock.advance(2);
  RunLoop::current().runDue();
  EXPECT_EQ(part("delayed work"), "  none\n");
  EXPECT_EQ(part("queues"), "  main: 0 waiting\n  global: 0 waiting\n  writer: 0 waiting\n");
}

TEST_F(Diagnostics, NameTheHolderOfAnAwaitedLock) {
  UnfairLock lock;
  std::thread waiter;
  std::thread([&] {  // a thread that takes its first lock under diagnosis
    lock.lock();
    waiter = std::thread([&] { lock.withLock([] {}); });
    std::string awaited = "  none\n";
    while (awaited == "  none\n") awaited = part("awaited locks");
    EXPECT_EQ(awaited, "  A: held by thread N, awaited by thread N\n");
    lock.unlock();
    waiter.join();
  })
      .join();
  EXPECT_EQ(part("awaited locks"), "  none\n");
}

}  // namespace
