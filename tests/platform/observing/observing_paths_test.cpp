// SPDX-License-Identifier: Apache-2.0
// Paths of several keys, keys that depend on others, changes announced by hand, and arrays changed in place.
#include "observed_objects.h"

using namespace havrin;
using namespace havrin_test;

TEST_F(Observed, PathsFollowWhatIsReplacedAndWhatIsMissing) {
  const auto ada = host("Ada");
  const auto bob = host("Bob");
  watcher->during = [&](NSObject* object) { EXPECT_EQ(object, station.get()) << "the root is told of"; };
  watch("host.name");
  send<"setHost:">(station, ada);
  send<"setName:">(ada, s("Ana"));
  send<"setHost:">(station, bob);
  EXPECT_EQ(watcher->take(), "host.name 1 null>Ada, host.name 1 Ada>Ana, host.name 1 Ana>Bob");
  send<"setName:">(ada, s("nobody hears"));
  EXPECT_FALSE(dispatchClass(ada)->isNotifying());
  send<"setHost:">(station, bob);
  send<"setName:">(bob, s("Ben"));
  send<"setHost:">(station, nullptr);
  EXPECT_EQ(watcher->take(), "host.name 1 Bob>Bob, host.name 1 Bob>Ben, host.name 1 Ben>null");
  send<"setName:">(bob, s("gone"));
  EXPECT_EQ(watcher->take(), "");
  unwatch("host.name");
  EXPECT_TRUE(station->isUnobserved());
}

TEST_F(Observed, ObjectsOnTheWayAreNotRetainedAndMayDie) {
  const auto bob = host("Bob");
  watch("guest.deputy.name");
  {
    const auto guest = host("Eve");
    send<"setDeputy:">(guest, bob);
    send<"setGuest:">(station, guest);
    EXPECT_EQ(watcher->take(), "guest.deputy.name 1 null>Bob");
    Host::destroyed = 0;
  }
  EXPECT_EQ(Host::destroyed, 1);
  send<"setName:">(bob, s("Ben"));
  EXPECT_EQ(watcher->take(), "") << "nothing leads there any more";
  const auto guest = host("Zoe");
  send<"setGuest:">(station, guest);
  send<"setDeputy:">(guest, bob);
  EXPECT_EQ(watcher->take(), "guest.deputy.name 1 null>null, guest.deputy.name 1 null>Ben");
  station = nullptr;  // the root goes first
  send<"setDeputy:">(guest, nullptr);
  EXPECT_EQ(watcher->take(), "");
  EXPECT_FALSE(dispatchClass(guest)->isNotifying());
}

TEST_F(Observed, DependentKeysChangeWithWhatTheyDependOn) {
  watch("banner");
  watch("longBanner", kNew);
  send<"setTitle:">(station, s("Nord"));
  EXPECT_EQ(watcher->take(), "banner 1 -/->Nord/-, longBanner 1 -><Nord/->");
  const auto ada = host("Ada");
  send<"setHost:">(station, ada);
  EXPECT_EQ(watcher->take(), "banner 1 Nord/->Nord/Ada, longBanner 1 -><Nord/Ada>");
  send<"setName:">(ada, s("Ana"));
  EXPECT_EQ(watcher->take(), "banner 1 Nord/Ada>Nord/Ana, longBanner 1 -><Nord/Ana>");
  send<"setHost:">(station, nullptr);
  watcher->take();
  send<"setName:">(ada, s("Amy"));
  send<"willChangeValueForKey:">(station, s("banner"));
  send<"didChangeValueForKey:">(station, s("banner"));
  EXPECT_EQ(watcher->take(), "banner 1 Nord/->Nord/-, longBanner 1 -><Nord/->");
  unwatch("banner");
  unwatch("longBanner");
  EXPECT_TRUE(station->isUnobserved());
}

TEST_F(Observed, ByHandWhatIsAnnouncedIsTold) {
  watch("quiet");
  send<"setQuiet:">(station, 1);
  send<"setQuiet:">(station, 1);
  EXPECT_EQ(watcher->take(), "quiet 1 0>1") << "the setter decides";
  send<"didChangeValueForKey:">(station, s("quiet"));
  EXPECT_EQ(watcher->take(), "") << "never announced";
  watch("hand");
  send<"willChangeValueForKey:">(station, s("hand"));
  send<"setHand:">(station, 5);
  send<"didChangeValueForKey:">(station, s("hand"));
  EXPECT_EQ(watcher->take(), "hand 1 0>5, hand 1 0>5") << "the inner pair first";
  send<"willChangeValueForKey:">(station, s("hand"));  // and never done
  unwatch("hand");
  unwatch("quiet");
  EXPECT_EQ(nameOf([&] { send<"willChangeValueForKey:">(station, nullptr); }), NSInvalidArgumentException);
}

TEST_F(Observed, ArraysChangedInPlaceTellWhere) {
  watch("songs");
  const auto songs = send<"mutableArrayValueForKey:">(station, s("songs"));
  songs->addObject(s("a"));
  songs->addObject(s("b"));
  songs->insertObject(s("x"), 1);
  EXPECT_EQ(watcher->take(), "songs 2 ->(a) at 0, songs 2 ->(b) at 1, songs 2 ->(x) at 1");
  songs->removeObjectAtIndex(0);
  songs->replaceObjectAtIndex(1, s("y"));
  EXPECT_EQ(watcher->take(), "songs 3 (a)>- at 0, songs 4 (b)>(y) at 1");
  EXPECT_EQ(shown(send<"songs">(station)), "(x, y)");
  EXPECT_EQ(shown(songs), "(x, y)");
  EXPECT_EQ(nameOf([&] { songs->removeObjectAtIndex(2); }), NSRangeException);
  EXPECT_EQ(nameOf([&] { songs->addObject(nullptr); }), NSInvalidArgumentException);
  send<"setSongs:">(station, makeArray({}));
  EXPECT_EQ(watcher->take(), "songs 1 (x, y)>()");
  EXPECT_EQ(songs->count(), 0U);
  send<"setSongs:">(station, nullptr);
  songs->addObject(s("z"));
  EXPECT_EQ(watcher->take(), "songs 1 ()>null, songs 2 ->(z) at 0");
}

TEST_F(Observed, ArraysOfWhichOnlyTheStepsAreOfferedChangeThroughThem) {
  watch("tags");
  const auto tags = send<"mutableArrayValueForKey:">(station, s("tags"));
  tags->addObject(s("jazz"));
  tags->insertObject(s("news"), 0);
  tags->removeLastObject();
  EXPECT_EQ(watcher->take(), "tags 2 ->(jazz) at 0, tags 2 ->(news) at 0, tags 3 (jazz)>- at 1");
  EXPECT_EQ(station->tags.size(), 1U);
  EXPECT_EQ(nameOf([&] { tags->replaceObjectAtIndex(0, s("x")); }), NSUndefinedKeyException);
  send<"setTitle:">(station, s("a"));
  EXPECT_EQ(nameOf([&] { (void)send<"mutableArrayValueForKey:">(station, s("title"))->count(); }),
            NSInvalidArgumentException);
}
