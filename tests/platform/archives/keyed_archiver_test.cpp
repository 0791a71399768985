// SPDX-License-Identifier: Apache-2.0
#include "archive_samples.h"
#include <HavrinFoundation/platform/archives/keyed_archiver.h>

namespace havrin {
namespace {

using namespace samples;

class Stranger : public Object<Stranger, NSObject> {};
class Silent : public Object<Silent, NSObject> {
 public:
  void encodeWithCoder(NSCoder*) const {}
  using Members = List<Method<"encodeWithCoder:", &Silent::encodeWithCoder>>;
};

TEST(KeyedArchiver, ReportsWhatCannotBeWritten) {
  NSKeyedUnarchiver::setClass(classOf<Silent>(), "Silent");
  const auto holdsItself = make<NSMutableArray>();
  const auto dictionary = make<NSMutableDictionary>();
  holdsItself->addObject(dictionary);
  dictionary->setObject(holdsItself, makeString("k"));
  Strong<NSObject> deep = makeArray({});
  for (std::size_t i = 0; i < NSKeyedUnarchiver::kDeepestNesting; ++i) deep = makeArray({deep});
  Strong<NSArray> deepest = makeArray({deep});
  Strong<NSObject> laughs = makeArray({makeString("ha"), makeString("ha")});
  for (int i = 0; i < 30; ++i) laughs = makeArray({laughs, laughs});
  ArrayBuilder parts(1'000);
  for (int i = 0; i < 1'000; ++i) parts.add(makeNumber(i));
  const Strong<NSArray> key = parts.finish();
  const auto copies = make<NSMutableArray>();
  for (int i = 0; i < 1'000; ++i) copies->addObject(makeDictionary({{key, makeNumber(i)}}));
  for (const auto& [object, secure, reason] : Rows<Strong<NSObject>, bool, std::string>{
           {makeArray({make<Stranger>()}), false, "unknown class Stranger"},
           {make<Silent>(), false, "class Silent does not adopt NSCoding"},
           {make<Puppet>(), true, "class Puppet does not adopt NSSecureCoding"},
           {holdsItself, false, "a collection contains itself"},
           {deepest, false, "objects are nested deeper than 1024 levels"},
           {laughs, false, "shared objects expand beyond the size limit"},
           {copies, false, "the objects take too much memory"},
       }) {
    SCOPED_TRACE(reason);
    Strong<NSError> error;
    EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(object, secure, &error));
    EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(object, secure, nullptr));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), NSCoderInvalidValueError);
    EXPECT_TRUE(saysWhy(textOf(error), reason));
  }
  holdsItself->removeAllObjects();
  NSKeyedUnarchiver::setClass(Class(), "Silent");
  EXPECT_FALSE(NSKeyedUnarchiver::classForName("Silent"));
}

// A subclass of the application, which archives do not know by a name of its own.
class Fixed : public Object<Fixed, NSArray> {
 public:
  std::uint64_t count() const override { return 2; }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return makeNumber(index); }
};
class Shout : public Object<Shout, NSString> {
 public:
  std::uint64_t length() const override { return 3; }
  char16_t characterAtIndex(std::uint64_t) const override { return u'!'; }
};
class Named : public Object<Named, NSMutableArray> {};

TEST(KeyedArchiver, WritesASubclassAsTheClassThatArchivesKnow) {
  EXPECT_EQ(shapeOf(root(archived(make<Fixed>()))), shapeOf(makeArray({makeNumber(0), makeNumber(1)})));
  EXPECT_EQ(shapeOf(root(archived(make<Shout>()))), "NSString!!!");
  const auto named = make<Named>();
  named->addObject(makeNumber(1));
  EXPECT_EQ(shapeOf(root(archived(named))), "NSMutableArray(NSNumber11 )");
  Strong<NSError> error;
  NSKeyedUnarchiver::setClass(classOf<Named>(), "Named");
  EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(named, false, &error));
  EXPECT_TRUE(saysWhy(textOf(error), "class Named does not respond to encodeWithCoder:"));
  NSKeyedUnarchiver::setClass(Class(), "Named");
}

TEST(KeyedArchiver, ExtendsAnArchiveWithoutRepeatingObjects) {
  const auto archiver = make<NSKeyedArchiver>();
  archiver->encodeObject(letters("abc"), "root");
  const auto first = archiver->encodedData();
  EXPECT_TRUE(archiver->encodedData()->isEqual(first));
  archiver->encodeInteger(7, "more");
  const auto second = archiver->encodedData();
  EXPECT_EQ(unarchiverOf(second)->decodeIntegerForKey("more"), 7);
  EXPECT_TRUE(root(second)->isEqual(letters("abc")));
  EXPECT_LT(second->length(), first->length() + 16);
}

TEST(KeyedArchiver, WritesAClassUnderANameThatMeansIt) {
  const auto written = [] {
    const auto data = NSKeyedArchiver::archivedDataWithRootObject(make<Puppet>(), false, nullptr);
    return data ? classOf(*root(data)).name() : "none";
  };
  EXPECT_EQ(written(), "Puppet");
  NSKeyedUnarchiver::setClass(classOf<Puppet>(), "Second");
  NSKeyedUnarchiver::setClass(classOf<NSArray>(), "Puppet");
  EXPECT_EQ(written(), "Puppet") << "under its second name, since the first means another class now";
  NSKeyedUnarchiver::setClass(nullptr, "Second");
  EXPECT_EQ(written(), "none");
  NSKeyedUnarchiver::setClass(classOf<Puppet>(), "Puppet");
  EXPECT_EQ(written(), "Puppet");
}

}  // namespace
}  // namespace havrin
