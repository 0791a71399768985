// SPDX-License-Identifier: Apache-2.0
// What must not compile: one mistake a case, and none in case 0.
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <string>

using namespace havrin;

template <>
struct havrin::Message<NSObject, "greet:"> : Signature<Strong<NSString>(NSString*)> {};
template <>
struct havrin::Message<NSObject, "ask:"> : Signature<void(BlockView<Strong<NSString>(NSObject*)>)> {};

struct Listener : Object<Listener, NSObject> {
  Strong<NSString> name_;
  std::int64_t age() { return 7; }
  using Members = List<Property<"name", &Listener::name_>, Method<"age", &Listener::age>>;
};

#if HAVRIN_CASE == 6
struct Shouter : Object<Shouter, Listener> {
  Strong<NSString> age() { return makeString("old"); }
  using Members = List<Method<"age", &Shouter::age>>;
};
#endif

struct Echo : Object<Echo, Listener> {
  std::int64_t age() {
#if HAVRIN_CASE == 0
    return sendSuper<"age">(*this);
#elif HAVRIN_CASE == 9
    return sendSuper<"aeg">(*this);
#elif HAVRIN_CASE == 10
    return sendSuper<"age">(*this, 7);
#elif HAVRIN_CASE == 11
    return sendSuper<"own">(*this);
#else
    return 0;
#endif
  }
  std::int64_t own() { return 1; }
  using Members = List<Method<"age", &Echo::age>, Method<"own", &Echo::own>>;
};

Strong<NSString> greet(NSObject&, NSString* word) { return word; }
std::int64_t wrong(NSObject&, std::int64_t number) { return number; }

void use(Listener& listener) {
  static_assert(Answers<Listener, "greet:"> && !Answers<Listener, "greeet:">);
#if HAVRIN_CASE == 0
  send<"greet:">(listener, makeString("x"));
  (void)row<NSObject, "greet:", greet>();
  send<"ask:">(listener, [](Listener& asked) { return asked.name_; });
#elif HAVRIN_CASE == 1
  send<"greeet:">(listener, makeString("x"));
#elif HAVRIN_CASE == 2
  send<"greet:">(listener, 7);
#elif HAVRIN_CASE == 3
  send<"greet:">(listener);
#elif HAVRIN_CASE == 4
  std::string text;
  send<"greet:">(text, makeString("x"));
#elif HAVRIN_CASE == 5
  (void)row<NSObject, "greet:", wrong>();
#elif HAVRIN_CASE == 6
  (void)make<Shouter>();
#elif HAVRIN_CASE == 7
  const Strong<Listener> made = new Listener;
#elif HAVRIN_CASE == 8
  send<"ask:">(listener, [](Listener& asked) { return asked.age(); });
#endif
}
