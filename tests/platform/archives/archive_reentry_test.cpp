// SPDX-License-Identifier: Apache-2.0
// Objects of the application that act on the coder, replace themselves or throw while they are read and written.
#include "archive_samples.h"

namespace havrin {
namespace {

using namespace samples;

class ArchiveReentry : public testing::Test {
 protected:
  void TearDown() override {
    Puppet::initialise = nullptr;
    Puppet::awake = nullptr;
    Puppet::encode = nullptr;
    written_ = nullptr;
    EXPECT_EQ(Puppet::alive, 0);
  }

  static NSKeyedUnarchiver& unarchiver(NSCoder& coder) { return static_cast<NSKeyedUnarchiver&>(coder); }

  Strong<NSObject> written_ = makeArray({make<Puppet>(), makeString("behind")});
  Strong<NSData> data_ = archived(written_);
};

TEST_F(ArchiveReentry, UsesWhatInitAndAwakeReturn) {
  const auto single = archived(make<Puppet>());
  Puppet::initialise = [](Puppet&, NSCoder&) { return makeString("another"); };
  EXPECT_EQ(shapeOf(root(data_)), "NSArray(NSStringanother NSStringbehind )");
  Puppet::initialise = [](Puppet&, NSCoder&) { return nullptr; };
  EXPECT_FALSE(root(single));
  EXPECT_TRUE(saysWhy(failureOf(data_), "object 1: a collection contains null"));
  Puppet::initialise = nullptr;
  Puppet::awake = [](Puppet&) { return makeNumber(1); };
  EXPECT_EQ(shapeOf(root(single)), "NSNumber11");

  Node::replacement = makeNumber(7);
  const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(archived(make<Node>(), true), nullptr);
  EXPECT_FALSE(unarchiver->decodeObjectOfClass(classOf<Node>(), "root"));
  EXPECT_TRUE(saysWhy(textOf(unarchiver->error()), "\"NSNumber\" is not among the allowed classes"));
  Node::replacement = nullptr;
}

TEST_F(ArchiveReentry, SurvivesAnExceptionThrownByInit) {
  const auto archiver = make<NSKeyedArchiver>();
  const auto outer = make<Puppet>(), inner = make<Puppet>();
  outer->inside = makeArray({inner});
  archiver->encodeObject(makeArray({makeString("before"), outer}), "both");
  archiver->encodeObject(makeString("x"), "text");
  outer->inside = nullptr;
  const int before = Puppet::alive;
  const auto unarchiver = unarchiverOf(archiver->encodedData());
  bool throws = true;
  Puppet::initialise = [&throws](Puppet& self, NSCoder& coder) {
    self.inside = coder.decodeObjectForKey("inside");
    if (throws && !self.inside) throw NSException("Mine", "thrown");
    return &self;
  };
  EXPECT_EQ(nameOf([&] { (void)unarchiver->decodeObjectForKey("both"); }), "Mine");
  EXPECT_EQ(Puppet::alive, before) << "nothing of it is left";
  EXPECT_FALSE(unarchiver->error()) << "it was no failure of decoding";
  EXPECT_TRUE(unarchiver->decodeObjectForKey("text"));
  throws = false;
  EXPECT_EQ(shapeOf(unarchiver->decodeObjectForKey("both")).substr(0, 30), "NSArray(NSStringbefore Puppet<");
}

TEST_F(ArchiveReentry, FailsWhenAnObjectFinishesOrRestartsItsUnarchiver) {
  Puppet::initialise = [](Puppet& self, NSCoder& coder) {
    unarchiver(coder).finishDecoding();
    self.inside = coder.decodeObjectForKey("inside");
    return &self;
  };
  for (const bool raises : {false, true}) {
    const auto unarchiver = unarchiverOf(data_);
    if (raises) unarchiver->setDecodingFailurePolicy(NSDecodingFailurePolicy::RaiseException);
    EXPECT_EQ(nameOf([&] { EXPECT_FALSE(unarchiver->decodeObjectForKey("root")); }),
              raises ? NSInvalidUnarchiveOperationException : "none");
    EXPECT_TRUE(unarchiver->hasFailed());
    unarchiver->finishDecoding();
    EXPECT_FALSE(unarchiver->decodeObjectForKey("root"));
  }
  Puppet::initialise = [this](Puppet& self, NSCoder& coder) {
    for (NSData* const data : {data_.get(), static_cast<NSData*>(nullptr)}) {
      Strong<NSError> why;
      EXPECT_FALSE(unarchiver(coder).initForReadingFromData(data, &why));
      EXPECT_TRUE(why);
    }
    return &self;
  };
  EXPECT_TRUE(unarchiverOf(data_)->decodeObjectForKey("root"));
}

TEST_F(ArchiveReentry, KeepsAnUnarchiverAliveWhileItReadsAndUsableAfterwards) {
  Strong<NSKeyedUnarchiver> owner = unarchiverOf(data_);
  Puppet::initialise = [&owner](Puppet& self, NSCoder&) {
    owner = nullptr;
    return &self;
  };
  EXPECT_TRUE(cast<NSArray>(owner->decodeObjectForKey("root").get()));
  EXPECT_FALSE(owner);

  Strong<NSCoder> kept;
  Puppet::initialise = [&kept](Puppet& self, NSCoder& coder) {
    kept = &coder;
    return &self;
  };
  const auto read = unarchiverOf(data_)->decodeObjectForKey("root");
  EXPECT_FALSE(kept->containsValueForKey("inside")) << "the object has been read: this is the top";
  EXPECT_EQ(kept->decodeObjectForKey("root"), read);
  unarchiver(*kept).finishDecoding();
  EXPECT_FALSE(kept->containsValueForKey("root") || kept->decodeObjectForKey("root"));
}

TEST_F(ArchiveReentry, GivesNoArchiveFromTheMiddleOfAnObjectOrAfterAnException) {
  Puppet::encode = [](const Puppet&, NSCoder& coder) {
    EXPECT_FALSE(static_cast<NSKeyedArchiver&>(coder).encodedData());
  };
  Strong<NSError> why;
  EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(written_, false, &why));
  EXPECT_TRUE(why);
  Puppet::encode = [](const Puppet&, NSCoder&) { throw std::runtime_error("no"); };
  const auto archiver = make<NSKeyedArchiver>();
  EXPECT_THROW(archiver->encodeObject(written_, "root"), std::runtime_error);
  EXPECT_TRUE(archiver->error());
  EXPECT_FALSE(archiver->encodedData());
}

TEST_F(ArchiveReentry, RefusesAKeyThatAnObjectEncodesTwice) {
  Puppet::encode = [](const Puppet&, NSCoder& coder) { coder.encodeInteger(1, "k"); };
  for (const int values : {2, 100}) {
    const auto archiver = make<NSKeyedArchiver>();
    for (int i = 0; i < values; ++i) archiver->encodeObject(make<Puppet>(), std::to_string(i));
    EXPECT_TRUE(archiver->encodedData()) << "each object has keys of its own";
    archiver->encodeBool(true, std::to_string(values - 1));
    EXPECT_FALSE(archiver->encodedData());
    EXPECT_TRUE(saysWhy(textOf(archiver->error()), "is encoded twice"));
  }
}

}  // namespace
}  // namespace havrin
