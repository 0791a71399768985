// SPDX-License-Identifier: Apache-2.0
// Objects of the application that use the coder in ways they should not, while they are read and written: an error each
// time, and an archive that can still be told from a good one.
#include "../../objects.h"
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/set.h>

using namespace havrin;

namespace {

/// Does what a test says while it is read and written, between two objects of its own.
class Meddler : public Object<Meddler, NSObject> {
 public:
  static inline std::function<void(NSKeyedUnarchiver&)> whileRead;
  static inline std::function<void(NSKeyedArchiver&)> whileWritten;
  static inline std::function<Strong<NSObject>(Meddler*)> becomes;

  Strong<NSObject> first = s("before");
  Strong<NSObject> second = s("behind");
  Strong<NSCoder> coder;

  void encodeWithCoder(NSCoder* archiver) const {
    archiver->encodeObject(first, "first");
    if (whileWritten) whileWritten(static_cast<NSKeyedArchiver&>(*archiver));
    archiver->encodeObject(second, "second");
  }
  Strong<NSObject> initWithCoder(NSCoder* unarchiver) {
    coder = unarchiver;
    first = unarchiver->decodeObject<NSString>("first");
    if (whileRead) whileRead(static_cast<NSKeyedUnarchiver&>(*unarchiver));
    second = unarchiver->decodeObject<NSString>("second");
    return becomes ? becomes(this) : Strong<NSObject>(this);
  }

  using Protocols = List<NSSecureCoding>;
  using Members =
      List<Method<"encodeWithCoder:", &Meddler::encodeWithCoder>, Method<"initWithCoder:", &Meddler::initWithCoder>>;
};
const ArchivedClass<Meddler> kArchivedMeddler("Meddler");

/// Cannot be made before its values are known.
class Needy : public Object<Needy, NSObject> {
 public:
  explicit Needy(int) {}
  Strong<NSObject> initWithCoder(NSCoder*) { return this; }
  using Protocols = List<NSCoding>;
  using Members = List<Method<"initWithCoder:", &Needy::initWithCoder>>;
};

class ArchiveReentry : public testing::Test {
 protected:
  void TearDown() override {
    Meddler::whileRead = nullptr;
    Meddler::whileWritten = nullptr;
    Meddler::becomes = nullptr;
  }

  Strong<NSObject> array_ = makeArray({make<Meddler>(), make<Meddler>()});
  Strong<NSData> data_ = NSKeyedArchiver::archivedDataWithRootObject(array_, true, nullptr);
};

Strong<NSKeyedUnarchiver> unarchiverOf(NSData* data) {
  return alloc<NSKeyedUnarchiver>()->initForReadingFromData(data, nullptr);
}

Strong<NSObject> decodeRoot(NSKeyedUnarchiver& unarchiver) {
  return unarchiver.decodeObjectOfClasses(makeSet({classOf<NSArray>(), classOf<Meddler>()}), "root");
}

TEST_F(ArchiveReentry, AnObjectThatFinishesDecodingIsAFailure) {
  Meddler::whileRead = [](NSKeyedUnarchiver& unarchiver) { unarchiver.finishDecoding(); };
  for (const auto policy : {NSDecodingFailurePolicy::SetErrorAndReturn, NSDecodingFailurePolicy::RaiseException}) {
    const auto unarchiver = unarchiverOf(data_);
    unarchiver->setDecodingFailurePolicy(policy);
    const bool raises = policy == NSDecodingFailurePolicy::RaiseException;
    EXPECT_EQ(nameOf([&] { EXPECT_FALSE(decodeRoot(*unarchiver)); }),
              raises ? NSInvalidUnarchiveOperationException : "none");
    EXPECT_TRUE(unarchiver->hasFailed());
    unarchiver->finishDecoding();
    EXPECT_FALSE(decodeRoot(*unarchiver));
  }
}

TEST_F(ArchiveReentry, AnObjectCannotGiveItsUnarchiverAnotherArchive) {
  Meddler::whileRead = [this](NSKeyedUnarchiver& unarchiver) {
    for (NSData* data : {data_.get(), static_cast<NSData*>(nullptr)}) {
      Strong<NSError> why;
      EXPECT_FALSE(unarchiver.initForReadingFromData(data, &why));
      EXPECT_TRUE(why);
    }
  };
  const auto unarchiver = unarchiverOf(data_);
  EXPECT_TRUE(decodeRoot(*unarchiver));
  unarchiver->finishDecoding();
}

TEST_F(ArchiveReentry, WhatAnObjectBecomesIsOfTheClassesAskedFor) {
  Meddler::becomes = [](Meddler*) { return makeNumber(7); };
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(make<Meddler>(), true, nullptr);
  const auto secure = unarchiverOf(data);
  EXPECT_FALSE(secure->decodeObjectOfClass(classOf<Meddler>(), "root"));
  EXPECT_TRUE(text(secure->error()).find("\"NSNumber\" is not among the allowed classes") != std::string::npos);
  secure->finishDecoding();
  const auto any = unarchiverOf(data);
  any->setRequiresSecureCoding(false);
  EXPECT_EQ(text(any->decodeObjectForKey("root")), "7");
}

TEST_F(ArchiveReentry, AttributesReadBeforeAreHeldToTheClassesOfNow) {
  const auto archiver = make<NSKeyedArchiver>();
  archiver->encodeObject(
      make<NSAttributedString>(s("text"), makeDictionary({{s("NSLink"), makeNumber(1)}, {s("own"), make<Meddler>()}})),
      "text");
  const auto unarchiver = unarchiverOf(archiver->encodedData());
  const auto both = makeSet({classOf<NSAttributedString>(), classOf<Meddler>()});
  const Strong<NSObject> read = unarchiver->decodeObjectOfClasses(both, "text");
  EXPECT_TRUE(read);
  EXPECT_EQ(unarchiver->decodeObjectOfClasses(both, "text"), read);
  EXPECT_FALSE(unarchiver->decodeObjectOfClass(classOf<NSAttributedString>(), "text"));
  EXPECT_TRUE(text(unarchiver->error()).find("\"Meddler\" is not among the allowed classes") != std::string::npos);
  unarchiver->finishDecoding();
}

TEST_F(ArchiveReentry, AClassThatMakesNoObjectsIsAFailure) {
  NSKeyedUnarchiver::setClass(classOf<Needy>(), "Meddler");
  const auto unarchiver = unarchiverOf(data_);
  unarchiver->setRequiresSecureCoding(false);
  EXPECT_FALSE(unarchiver->decodeObjectForKey("root"));
  EXPECT_TRUE(text(unarchiver->error()).find("has no default constructor") != std::string::npos);
  NSKeyedUnarchiver::setClass(classOf<Meddler>(), "Meddler");
}

TEST_F(ArchiveReentry, AnUnarchiverOutlivesItsLastOwnerWhileItReads) {
  Strong<NSKeyedUnarchiver> unarchiver = unarchiverOf(data_);
  unarchiver->setRequiresSecureCoding(false);
  Meddler::whileRead = [&](NSKeyedUnarchiver&) { unarchiver = nullptr; };
  Meddler::becomes = [](Meddler* self) {
    self->coder = nullptr;
    return self;
  };
  EXPECT_TRUE(cast<NSArray>(unarchiver->decodeObjectForKey("root").get()));
  EXPECT_FALSE(unarchiver);
}

TEST_F(ArchiveReentry, ACoderThatIsKeptReadsTheTopAndThenNothing) {
  auto unarchiver = unarchiverOf(data_);
  const Strong<NSObject> root = decodeRoot(*unarchiver);
  NSCoder& kept = *cast<Meddler>(cast<NSArray>(root.get())->firstObject().get())->coder;
  EXPECT_FALSE(kept.containsValueForKey("first"));
  EXPECT_EQ(decodeRoot(static_cast<NSKeyedUnarchiver&>(kept)), root);
  unarchiver->finishDecoding();
  EXPECT_FALSE(kept.containsValueForKey("root"));
  EXPECT_FALSE(kept.decodeObject<NSArray>("root"));
}

TEST_F(ArchiveReentry, AnArchiveInTheMiddleOfAnObjectIsAFailure) {
  Meddler::whileWritten = [](NSKeyedArchiver& archiver) { EXPECT_FALSE(archiver.encodedData()); };
  Strong<NSError> why;
  EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(array_, true, &why));
  EXPECT_TRUE(why);
}

TEST_F(ArchiveReentry, AnExceptionOutOfAnObjectLeavesNoArchive) {
  Meddler::whileWritten = [](NSKeyedArchiver&) { throw std::runtime_error("no"); };
  const auto archiver = make<NSKeyedArchiver>();
  EXPECT_THROW(archiver->encodeObject(array_, "root"), std::runtime_error);
  EXPECT_TRUE(archiver->error());
  EXPECT_FALSE(archiver->encodedData());
}

}  // namespace
