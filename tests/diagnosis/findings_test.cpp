// SPDX-License-Identifier: Apache-2.0
// Every mistake that diagnosis recognises, with the lines that it writes, beside its correct form, of which it writes none.
#include "../objects.h"
#include <HavrinFoundation/frame/rate_limits_messages.h>
#include <HavrinFoundation/observation/key_value_observation_messages.h>
#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <future>
#include <regex>
#include <span>
#include <sys/wait.h>
#include <unistd.h>

using namespace havrin;

template <>
struct havrin::Message<NSObject, "dia_ring"> : Signature<void()> {};

namespace {

struct Field : Object<Field, NSObject> {
  void search() {}
  Strong<NSObject> form = make<NSObject>();
  using Members = List<Method<"search", &Field::search>, Property<"form", &Field::form>>;
};

void debounce(NSObject& field, Selector message) { send<"h_debounce:delay:">(field, message, 0); }

void observe(NSObject& object, std::string_view path) {
  send<"addObserver:forKeyPath:options:context:">(object, make<Field>(), s(path), 0, nullptr);
}

Strong<KeyValueObservation> token(NSObject* observer, NSObject& object) {
  return send<"initWithObserver:object:keyPaths:options:action:">(alloc<KeyValueObservation>(), observer, &object,
                                                                  makeArray({s("form")}), 0,
                                                                  [](NSObject*, NSObject*, NSDictionary*) {});
}

void onThread(void (*body)()) { std::thread(body).join(); }
void onQueue(void (*body)()) {
  std::promise<void> done;
  dispatch_async(dispatch_get_global_queue(), [&] {
    body();
    done.set_value();
  });
  done.get_future().wait();
}

// What two images add.
void ring(NSObject&) {}
constexpr MethodRow kRows[] = {row<NSObject, "dia_ring", ring>()};
constinit const Category kBell{classObject<NSObject>, "Bell", kRows, {}};
const Category* const kFirst[] = {&kBell};
const Category* const kSecond[] = {&kBell};

struct Mistake {
  const char* why;
  void (*mistake)();
  std::vector<std::string> lines;
  void (*correct)();
};

const Mistake kMistakes[] = {
    {"a misspelt selector in a debounce",
     [] { debounce(*make<Field>(), selector<"serach">); },
     {"-[Field h_debounce:delay:] has no effect: Field does not respond to \"serach\"; expected the selector of a "
      "method that Field or a superclass lists; did you mean \"search\"? (main thread)"},
     [] { debounce(*make<Field>(), selector<"search">); }},
    {"a misspelt selector in a throttle, twice",
     [] {
       for (int i = 0; i < 2; ++i) send<"h_throttle:delay:">(make<Field>(), selector<"serach">, 1.0);
     },
     {"-[Field h_throttle:delay:] has no effect: Field does not respond to \"serach\"; expected the selector of a "
      "method that Field or a superclass lists; did you mean \"search\"? (main thread)"},
     [] { send<"h_throttle:delay:">(make<Field>(), selector<"search">, 1.0); }},
    {"a debounce on a worker thread",
     [] { onQueue([] { debounce(*make<Field>(), selector<"search">); }); },
     {"-[Field search] is delayed on a worker thread of a queue, which does not run its run loop; expected the "
      "main thread, or a thread that runs RunLoop::current() (thread N)"},
     [] { onQueue([] { RunLoop::main().perform([] {}); }); }},
    {"a debounce and a closure on a thread that ends without running its loop",
     [] {
       onThread([] {
         debounce(*make<Field>(), selector<"search">);
         RunLoop::current().performAfter(1, [] {});
       });
     },
     {"-[Field search] was delayed and will not run: its thread ended before its run loop came to it; expected "
      "RunLoop::current().runUntil(...) on that thread, or a thread that lives on (thread N)",
      "a closure was delayed and will not run: its thread ended before its run loop came to it; expected "
      "RunLoop::current().runUntil(...) on that thread, or a thread that lives on (thread N)"},
     [] {
       onThread([] {
         debounce(*make<Field>(), selector<"search">);
         RunLoop::current().runDue();
       });
     }},
    {"a misspelt key, and one at the end of a path",
     [] {
       observe(*make<Field>(), "fomr");
       observe(*make<Field>(), "form.tilte");
     },
     {"Field is observed for the key \"fomr\", for which it has no getter and no setter; expected the key of a "
      "property or method that Field or a superclass lists; did you mean \"form\"? (main thread)",
      "NSObject is observed for the key \"tilte\", for which it has no getter and no setter; expected the key of "
      "a property or method that NSObject or a superclass lists (main thread)"},
     [] {
       observe(*make<Field>(), "form");
       observe(*makeDictionary({}), "anything");
     }},
    {"an observation that nobody keeps",
     [] {
       const TestClock clock;
       static_cast<void>(token(make<Field>(), *make<Field>()));
     },
     {"the KeyValueObservation of Field for [form] ended within a millisecond, before anything changed; expected "
      "it to be kept, in a Strong or by a responder's observeModel:forKeyPath:action: (main thread)"},
     [] {
       TestClock clock;
       const auto kept = token(nullptr, *make<Field>());
       clock.advance(1);
     }},
    {"an observation that outlives its observer",
     [] {
       const auto field = make<Field>();
       const auto kept = token(make<Field>(), *field);
       send<"setForm:">(field, nullptr);
     },
     {"the KeyValueObservation of Field for [form] still lives although its observer has gone, and drops its "
      "changes; expected the observer to be the one that keeps it (main thread)"},
     [] {
       const auto field = make<Field>();
       const auto kept = token(nullptr, *field);
       send<"setForm:">(field, nullptr);
     }},
    {"an observer that is destroyed without removing itself",
     [] {
       const auto field = make<Field>();
       observe(*field, "form");
       send<"setForm:">(field, nullptr);
     },
     {"a change of Field for \"form\" is not delivered: the observer has been destroyed; expected it to remove itself "
      "before, with removeObserver:forKeyPath:context: (main thread)"},
     [] { observe(*make<Field>(), "form"); }},
    {"a misspelt selector that is performed",
     [] { EXPECT_THROW(make<Field>()->performSelector(selector<"serach">), NSException); },
     {"-[Field serach] was sent, but neither the class nor a category of the loaded images (HavrinFoundation) has "
      "it; expected the image that adds it to be linked or loaded before; did you mean \"search\"? (main thread)"},
     [] { make<Field>()->performSelector(selector<"search">); }},
};

/// What `body` writes to the standard error with this value of the environment variable, thread numbers as N.
std::string written(const char* value, const std::function<void()>& body) {
  value ? setenv("HAVRIN_DIAGNOSIS", value, 1) : unsetenv("HAVRIN_DIAGNOSIS");
  diagnosisSwitch = DiagnosisSwitch::unread;
  testing::internal::CaptureStderr();
  body();
  return std::regex_replace(testing::internal::GetCapturedStderr(), std::regex("thread [0-9]+"), "thread N");
}

// A process writes each finding once, so a test has one of its own and may be repeated.
void inItsOwnProcess(const std::function<void()>& body) {
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    body();
    std::fflush(stdout);
    std::exit(testing::Test::HasFailure());
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST(Findings, AreWrittenOnceAndOnlyWhereDiagnosisIsOn) {
  for (const Mistake& row : kMistakes) {
    SCOPED_TRACE(row.why);
    inItsOwnProcess([&row] {
      for (const char* off : {static_cast<const char*>(nullptr), "", "0"}) EXPECT_EQ(written(off, row.mistake), "");
      EXPECT_EQ(written("1", row.correct), "");
      std::string expected;
      for (const std::string& line : row.lines) expected += "havrin: diagnosis: " + line + "\n";
      EXPECT_EQ(written("1", row.mistake), expected);
    });
  }
}

void expectFindingsOfImages() {
  const auto load = [](std::string_view name, std::span<const Category* const> categories) {
    const Loader loader{Image{name, nullptr, {}, categories, {}}};
  };
  EXPECT_EQ(written("1", [&] { EXPECT_THROW(send<"dia_ring">(make<Field>()), NSException); }),
            "havrin: diagnosis: -[Field dia_ring] was sent, but neither the class nor a category of the loaded images "
            "(HavrinFoundation) has it; expected the image that adds it to be linked or loaded before (main thread)\n");
  EXPECT_EQ(
      written("1", [&] { load("door", kFirst); }),
      "havrin: diagnosis: -[Field dia_ring] was sent before the image \"door\", which adds it, was loaded; expected "
      "the image to be loaded first (main thread)\n");
  EXPECT_EQ(written("1", [&] { load("door", kFirst); }), "") << "the same image";
  EXPECT_EQ(
      written("1", [&] { load("gate", kSecond); }),
      "havrin: diagnosis: -[NSObject dia_ring] is added by the image \"door\" in NSObject(Bell), and by the image "
      "\"gate\" in NSObject(Bell), which answers from now on; expected a selector with a prefix of its own in each "
      "image (main thread)\n");
}

TEST(Findings, OfImagesAreWrittenAsTheyAreLoaded) { inItsOwnProcess(expectFindingsOfImages); }

}  // namespace
