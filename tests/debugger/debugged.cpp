// SPDX-License-Identifier: Apache-2.0
// One value of each kind that the debugger shows. Behind "//>" stands an expression, and behind the arrow what gdb must
// print for it at the end of main, where "#" is an address.
#include <HavrinFoundation/HavrinFoundation.h>
#include <HavrinFoundation/platform/dispatch/queue_state.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/platform/foundation/ns_url.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/foundation/set.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <thread>

using namespace havrin;

namespace {

class Station : public Object<Station, UIResponder> {
  Strong<NSString> title_ = makeString("Nord");

 public:
  using Members = List<Property<"title", &Station::title_>>;
};

void stopHere() { std::puts("stopped"); }

}  // namespace

int main() {
  const Strong<NSString> text = makeString("a\"b");
  const Strong<NSString> wide = makeString(u"\u041c\u0430\u044f\u043a");
  const Strong<NSMutableString> grown = make<NSMutableString>();
  [[maybe_unused]] NSString* borrowed = text;
  const Strong<NSString> none;
  //> text => NSString "a\\"b"
  //> wide => NSString "Маяк"
  //> grown => NSMutableString ""
  //> borrowed => NSString "a\\"b"
  //> *borrowed => NSString "a\\"b"
  //> none => nil

  const Strong<NSNumber> numbers[] = {makeNumber(true), makeNumber(-3), makeNumber(UINT64_MAX), makeNumber(0.5)};
  const Strong<NSObject> null = NSNull::null();
  const auto pair = std::as_bytes(std::span("\x01\xff", 2));
  const Strong<NSObject> data = make<NSData>(std::vector(pair.begin(), pair.end()));
  //> numbers => {NSNumber true, NSNumber -3, NSNumber 18446744073709551615, NSNumber 0.5}
  //> null => NSNull
  //> data => NSData 2 bytes 01ff

  const Date when = Date::fromTimeIntervalSinceReferenceDate(86400.25);
  const Strong<NSDate> date = make<NSDate>(when);
  const URL link = *URL::fromString("b?c", *URL::fromString("https://example.org/a"));
  const Strong<NSURL> url = make<NSURL>(link);
  const Strong<UIColor> colour = make<UIColor>(1.0, 0.5, 0.0, 1.0);
  //> when => 2001-01-02 00:00:00.250 UTC
  //> date => NSDate 2001-01-02 00:00:00.250 UTC
  //> link => "b?c" relative to "https://example.org/a"
  //> url => NSURL "b?c" relative to "https://example.org/a"
  //> colour => UIColor (1, 0.5, 0, 1)

  const Strong<NSArray> array = makeArray({text, numbers[1]});
  const Strong<NSDictionary> dictionary = makeDictionary({{text, numbers[0]}});
  const Strong<NSObject> set = makeSet({numbers[1], numbers[1]});
  const Strong<NSOrderedSet> ordered = make<NSOrderedSet>(std::initializer_list<NSObject*>{text, wide, text});
  //> array => NSArray of 2 = {NSString "a\\"b", NSNumber -3}
  //> dictionary => NSDictionary of 1 entry = {[NSString "a\\"b"] = NSNumber true}
  //> set => NSSet of 1 = {NSNumber -3}
  //> ordered => NSOrderedSet of 2 = {NSString "a\\"b", NSString "Маяк"}

  const Strong<Station> station = make<Station>();
  NSObject* object = station;
  Weak<NSObject> living = object;
  Weak<NSString> dead = makeString("gone");
  //> station => Station #
  //> object => Station #
  //> living => Weak Station #
  //> dead => Weak nil (its object is gone)

  Block<void()> block = [] {};
  const Block<void()> shared = block;
  const Strong<KeyValueObservation> token = send<"initWithObserver:object:keyPaths:options:action:">(
      alloc<KeyValueObservation>(), station, station, makeArray({makeString("title")}),
      KeyValueObservationOptionSkipInitial, [](NSObject*, NSObject*, NSDictionary*) {});
  //> block => block #, 2 references
  //> token => KeyValueObservation = {Weak Station #, Station #, NSArray of 1 = {NSString "title"}}

  const DispatchQueue queue = dispatch_queue_create("org.example.parser", DISPATCH_QUEUE_SERIAL);
  [[maybe_unused]] const QueueState& state = QueueState::of(queue);  // its fields are known through this
  const DispatchQueue noQueue;
  [[maybe_unused]] os_unfair_lock free{};
  os_unfair_lock mine{};
  os_unfair_lock theirs{};
  std::atomic<bool> taken = false;
  std::atomic<bool> end = false;
  os_unfair_lock_lock(&mine);
  std::thread other([&] {
    os_unfair_lock_lock(&theirs);
    taken = true;
    taken.notify_one();
    end.wait(false);
    os_unfair_lock_unlock(&theirs);
  });
  taken.wait(false);
  //> queue => queue "org.example.parser"
  //> noQueue => no queue
  //> free => free
  //> mine => held by thread 1
  //> theirs => held by thread 2

  stopHere();
  os_unfair_lock_unlock(&mine);
  end = true;
  end.notify_one();
  other.join();
}
