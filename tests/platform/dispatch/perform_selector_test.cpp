// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/perform_selector.h>
#include <HavrinFoundation/platform/dispatch/run_loop_source.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <future>
#include <latch>

namespace {

using namespace havrin;

class Listener : public Object<Listener, NSObject> {
 public:
  void ring() { heard.push_back("ring"); }
  void say(NSObject* what) { heard.push_back(what == nullptr ? "nothing" : utf8(*static_cast<NSString*>(what))); }
  using Members = List<Method<"ring", &Listener::ring>, Method<"say:", &Listener::say>>;
  std::vector<std::string> heard;
};

using Heard = std::vector<std::string>;

TEST(PerformSelector, SendsLaterWithItsArgumentUnlessItIsCancelled) {
  TestClock clock;
  const auto listener = make<Listener>();
  const auto word = makeString("word");
  performSelectorAfterDelay(*listener, selector<"say:">, makeString("two"), 2);
  performSelectorAfterDelay(*listener, selector<"ring">, makeString("unused"), 1);
  performSelectorAfterDelay(*listener, selector<"say:">, nullptr, 0);
  performSelectorAfterDelay(*listener, selector<"say:">, word, 1);
  cancelPreviousPerformRequests(*listener, selector<"say:">, makeString("other"));
  cancelPreviousPerformRequests(*listener, selector<"say:">, makeString("word"));
  EXPECT_TRUE(listener->heard.empty());
  clock.advance(2);
  EXPECT_EQ(listener->heard, (Heard{"nothing", "ring", "two"})) << "equal arguments are cancelled";
  EXPECT_THROW(performSelectorAfterDelay(*listener, selector<"a:b:">, nullptr, 0), NSException);
  EXPECT_THROW(performSelectorAfterDelay(*listener, Selector(), nullptr, 0), NSException);

  auto another = make<Listener>();
  const Weak<Listener> weak = another;
  performSelectorAfterDelay(*another, selector<"say:">, word, 1);
  performSelectorAfterDelay(*another, selector<"ring">, nullptr, 1);
  cancelPreviousPerformRequests(*another);
  another = nullptr;
  EXPECT_FALSE(weak.lock()) << "released at once";
}

TEST(PerformSelector, SendsOnAnotherThread) {
  const auto listener = make<Listener>();
  Strong<NSThread> thread;
  std::latch ready(1);
  bool done = false;
  std::thread runner([&] {
    RunLoopSource keepsAttached([] {});
    thread = NSThread::currentThread();
    EXPECT_EQ(thread.get(), NSThread::currentThread().get());
    EXPECT_FALSE(thread->isMainThread());
    ready.count_down();
    while (!done) RunLoop::current().runMode(NSDefaultRunLoopMode, kInfinity);
  });
  ready.wait();
  performSelectorOnThread(*listener, selector<"say:">, *thread, makeString("queued"), false);
  performSelectorOnThread(*listener, selector<"ring">, *thread, nullptr, true);
  EXPECT_EQ(listener->heard, (Heard{"queued", "ring"})) << "the call has waited";
  thread->runLoop().perform([&done] { done = true; });
  runner.join();
  for (const bool wait : {true, false}) {
    EXPECT_EQ(nameOf([&] { performSelectorOnThread(*listener, selector<"ring">, *thread, nullptr, wait); }),
              NSDestinationInvalidException)
        << "the thread has ended";
  }
}

TEST(PerformSelector, EndsAWaitWithTheThreadItWaitsFor) {
  const auto listener = make<Listener>();
  std::promise<Strong<NSThread>> started;
  std::promise<void> mayEnd;
  std::thread runner([&] {
    started.set_value(NSThread::currentThread());
    mayEnd.get_future().wait();
  });
  const Strong<NSThread> thread = started.get_future().get();
  auto waiting = std::async(std::launch::async,
                            [&] { performSelectorOnThread(*listener, selector<"ring">, *thread, nullptr, true); });
  mayEnd.set_value();
  runner.join();
  EXPECT_THROW(waiting.get(), NSException);
  EXPECT_TRUE(listener->heard.empty());
}

TEST(PerformSelector, SendsAtOnceWhenItWaitsForItsOwnThread) {
  TestClock clock;
  const auto listener = make<Listener>();
  performSelectorOnThread(*listener, selector<"ring">, *NSThread::currentThread(), nullptr, true);
  EXPECT_EQ(listener->heard, Heard{"ring"});
  performSelectorOnThread(*listener, selector<"say:">, *NSThread::mainThread(), nullptr, false);
  EXPECT_EQ(listener->heard.size(), 1u);
  clock.runDue();
  EXPECT_EQ(listener->heard, (Heard{"ring", "nothing"}));
  EXPECT_EQ(NSThread::mainThread().get(), NSThread::currentThread().get());
  EXPECT_THROW(performSelectorOnThread(*listener, selector<"a:b:">, *NSThread::mainThread(), nullptr, false),
               NSException);
}

}  // namespace
