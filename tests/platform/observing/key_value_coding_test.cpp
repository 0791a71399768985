// SPDX-License-Identifier: Apache-2.0
#include "observed_objects.h"
#include <HavrinFoundation/platform/object/category.h>
#include <HavrinFoundation/platform/observing/key_value_coding.h>

using namespace havrin;
using havrin_test::Host;

namespace {

struct Unboxable {};

class Station : public Object<Station, NSObject> {
  Strong<Host> host_;
  Unboxable lock_;
  std::int64_t listeners_ = 0;
  bool onAir_ = true;

 public:
  double rating = 0;
  std::int64_t plainRating() { return 1; }
  double getRating() { return rating; }
  void takeRating(double value) { rating = value * 2; }  // a hand-written setter, under the private name
  std::int64_t secret() { return 42; }
  void announce() {}
  bool isOnAir() { return onAir_; }
  void setOnAir(bool value) { onAir_ = value; }
  std::int64_t both(std::int64_t a, std::int64_t b) { return a + b; }

  using Members = List<Property<"host", &Station::host_>, Property<"lock", &Station::lock_>,
                       Property<"listeners", &Station::listeners_>, Method<"rating", &Station::plainRating>,
                       Method<"getRating", &Station::getRating>, Method<"_setRating:", &Station::takeRating>,
                       Method<"_secret", &Station::secret>, Method<"announce", &Station::announce>,
                       Method<"isOnAir", &Station::isOnAir>, Method<"setOnAir:", &Station::setOnAir>,
                       Method<"both:with:", &Station::both>>;
};

class Relay : public Object<Relay, Station> {
 public:
  std::string asked;
  Strong<NSObject> value(NSString* key) { return key; }
  void setValue(NSObject*, NSString* key) { asked += "undefined " + text(key) + ", "; }
  void setNil(NSString* key) { asked += "null " + text(key) + ", "; }
  using Members =
      List<Method<"valueForUndefinedKey:", &Relay::value>, Method<"setValue:forUndefinedKey:", &Relay::setValue>,
           Method<"setNilValueForKey:", &Relay::setNil>>;
};

}  // namespace

template <>
struct havrin::Message<Station, "added"> : Signature<std::int64_t()> {};

namespace {

std::int64_t added(Station&) { return 7; }
constexpr MethodRow kAddedRows[] = {row<Station, "added", added>()};
constinit const Category kAdded{classObject<Station>, "Added", kAddedRows, {}};
const Category* const kCategories[] = {&kAdded};
const Image kImage{"added", nullptr, {}, kCategories, {}};

}  // namespace

TEST(KeyValueCoding, ReadsAndSetsThroughTheMethodsOfAKey) {
  const auto station = make<Station>();
  const auto ada = make<Host>();
  for (const auto& [name, value, before, after, why] :
       Rows<const char*, Strong<NSObject>, std::string, std::string, const char*>{
           {"listeners", makeNumber(12), "0", "12", "a property"},
           {"listeners", makeNumber(12.9), "12", "12", "a real is truncated into an integer property"},
           {"rating", makeNumber(2), "0", "4", "get<Key> goes before <key>, _set<Key>: is found"},
           {"onAir", makeNumber(false), "1", "0", "is<Key>"},
           {"host", ada, "nil", text(ada), "an object"},
           {"host", nullptr, text(ada), "nil", "null for an object"},
       }) {
    SCOPED_TRACE(why);
    const auto key = s(name);
    EXPECT_EQ(text(send<"valueForKey:">(station, key)), before);
    send<"setValue:forKey:">(station, value, key);
    EXPECT_EQ(text(send<"valueForKey:">(station, key)), after);
  }
  EXPECT_EQ(text(send<"valueForKey:">(station, s("_secret"))), "42");
  EXPECT_EQ(text(send<"valueForKey:">(station, s("secret"))), "42");
  EXPECT_EQ(text(send<"valueForKey:">(station, makeString(u"listeners"))), "12");
}

TEST(KeyValueCoding, RefusesWhatTheClassHasNot) {
  const auto station = make<Station>();
  const struct {
    Strong<NSString> key;
    Strong<NSObject> value;
    std::string_view reading, setting;
    const char* why;
  } rows[] = {
      {s("nothingLike"), makeNumber(1), NSUndefinedKeyException, NSUndefinedKeyException, "no method"},
      {s("Listeners"), makeNumber(1), NSUndefinedKeyException, "none", "letter case counts, but for the setter's"},
      {makeString("größe"), makeNumber(1), NSUndefinedKeyException, NSUndefinedKeyException, "not ASCII"},
      {s("announce"), makeNumber(1), NSUndefinedKeyException, NSUndefinedKeyException, "returns nothing"},
      {s("_secret"), makeNumber(1), "none", NSUndefinedKeyException, "no setter"},
      {s("listeners"), nullptr, "none", NSInvalidArgumentException, "null for a number"},
      {s("host"), makeNumber(1), "none", NSInvalidArgumentException, "another class"},
      {nullptr, makeNumber(1), NSInvalidArgumentException, NSInvalidArgumentException, "the null key"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(nameOf([&] { (void)send<"valueForKey:">(station, row.key); }), row.reading);
    EXPECT_EQ(nameOf([&] { send<"setValue:forKey:">(station, row.value, row.key); }), row.setting);
  }
  for (const char* name : {"nothingLike", "getNothingLike", "isNothingLike", "setNothingLike:", "_setNothingLike:"}) {
    EXPECT_FALSE(Selector::known(name)) << "text from outside makes no selectors: " << name;
  }
  EXPECT_EQ(nameOf([] { (void)send<"valueForKey:">(make<NSObject>(), makeString("a.b")); }), NSUndefinedKeyException);
  EXPECT_TRUE(saysWhy(thrownBy([&] { (void)send<"valueForKey:">(station, s("lock")); }), "Unboxable ()"));
}

TEST(KeyValueCoding, AsksAClassThatWantsToAnswerForUndefinedKeysAndNull) {
  const auto relay = make<Relay>();
  EXPECT_EQ(text(send<"valueForKey:">(relay, s("nothing"))), "nothing");
  for (const char* key : {"nobody", "listeners"}) send<"setValue:forKey:">(relay, nullptr, s(key));
  EXPECT_EQ(relay->asked, "undefined nobody, null listeners, ");
  send<"setValue:forKey:">(relay, makeNumber(3), s("listeners"));
  EXPECT_EQ(text(send<"valueForKey:">(relay, s("listeners"))), "3");
}

TEST(KeyValueCoding, FollowsPathsAndStopsAtNull) {
  const auto station = make<Station>();
  const auto path = s("host.name");
  EXPECT_FALSE(send<"valueForKeyPath:">(station, path));
  send<"setValue:forKeyPath:">(station, s("lost"), path);  // nobody there to be named
  send<"setValue:forKey:">(station, make<Host>(), s("host"));
  EXPECT_FALSE(send<"valueForKeyPath:">(station, path));
  send<"setValue:forKeyPath:">(station, s("Ada"), path);
  EXPECT_EQ(text(send<"valueForKeyPath:">(station, path)), "Ada");
  EXPECT_EQ(text(send<"valueForKeyPath:">(station, keyPath<Station, "host.name">)), "Ada");
  EXPECT_EQ(text(send<"valueForKeyPath:">(station, makeString(u"listeners"))), "0");
  for (const char* bad : {"host.nothing", "nothing.name", "host.", ".host", "host..name", "."}) {
    EXPECT_EQ(nameOf([&] { (void)send<"valueForKeyPath:">(station, s(bad)); }), NSUndefinedKeyException) << bad;
  }
  EXPECT_EQ(nameOf([&] { (void)send<"valueForKeyPath:">(station, nullptr); }), NSInvalidArgumentException);
}

TEST(KeyValueCoding, ReadsEntriesOfDictionaries) {
  const auto dictionary = make<NSMutableDictionary>();
  send<"setValue:forKey:">(dictionary, make<Host>(), s("host"));
  send<"setValue:forKeyPath:">(dictionary, s("Ada"), s("host.name"));
  EXPECT_EQ(text(send<"valueForKeyPath:">(dictionary, s("host.name"))), "Ada");
  send<"setValue:forKey:">(dictionary, nullptr, s("host"));
  EXPECT_FALSE(send<"valueForKey:">(dictionary, s("host")));
  EXPECT_EQ(dictionary->count(), 0U);
  EXPECT_EQ(nameOf([] { send<"setValue:forKey:">(make<NSDictionary>(), nullptr, makeString("a")); }),
            NSUndefinedKeyException);
}

TEST(KeyValueCoding, SeesMethodsThatACategoryBringsLater) {
  const auto station = make<Station>();
  const auto key = s("added");
  EXPECT_EQ(nameOf([&] { (void)send<"valueForKey:">(station, key); }), NSUndefinedKeyException);
  EXPECT_EQ(text(send<"valueForKey:">(station, s("listeners"))), "0");
  const Loader loader(kImage);
  EXPECT_EQ(text(send<"valueForKey:">(station, key)), "7");
  EXPECT_EQ(text(send<"valueForKey:">(station, s("listeners"))), "0");
}

TEST(KeyValueCoding, MayBeUsedFromSeveralThreadsWhileCategoriesCome) {
  onThreads(5, [](std::size_t thread) {
    const auto station = make<Station>();
    for (int i = 0; i < 500; ++i) {
      if (thread == 0) const Loader again(kImage);
      send<"setValue:forKey:">(station, makeNumber(i), s("listeners"));
      EXPECT_EQ(text(send<"valueForKey:">(station, s("listeners"))), std::to_string(i));
    }
  });
}
