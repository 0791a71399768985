// SPDX-License-Identifier: Apache-2.0
// What is written can be read, also near a bound. Archives that need too much memory: hostile_archive_test.cpp.
#include "../../objects.h"
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/documents/property_list.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/ns_url.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/foundation/set.h>

using namespace havrin;

namespace {

class Holder : public Object<Holder, NSObject> {
 public:
  Strong<NSObject> first;
  Strong<NSObject> second;
  void encodeWithCoder(NSCoder* coder) const {
    coder->encodeObject(first, "first");
    coder->encodeObject(second, "second");
  }
  Strong<NSObject> initWithCoder(NSCoder* coder) {
    first = coder->decodeObjectForKey("first");
    second = coder->decodeObjectForKey("second");
    return this;
  }
  using Protocols = List<NSCoding>;
  using Members =
      List<Method<"encodeWithCoder:", &Holder::encodeWithCoder>, Method<"initWithCoder:", &Holder::initWithCoder>>;
};
const ArchivedClass<Holder> kArchivedHolder("Holder");

struct Read {
  Strong<NSObject> root;
  std::string error;
};
Read read(NSData* data) {
  const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(data, nullptr);
  if (!unarchiver) return {nullptr, "no archive"};
  unarchiver->setRequiresSecureCoding(false);
  Strong<NSObject> root = unarchiver->decodeObjectForKey(NSKeyedArchiveRootObjectKey);
  return {root, unarchiver->hasFailed() ? text(unarchiver->error()) : ""};
}

Strong<NSObject> doubled(Strong<NSObject> inside, int times) {
  for (int i = 0; i < times; ++i) inside = makeArray({inside, inside});
  return inside;
}

template <class Make>
Strong<NSArray> many(int count, Make makeOne) {
  auto row = make<NSMutableArray>();
  for (int i = 0; i < count; ++i) row->addObject(makeOne(i));
  return row;
}

TEST(ArchiveLimits, WhatIsWrittenIsRead) {
  constexpr std::size_t kLarge = 300'000;
  const std::vector<std::byte> bytes(kLarge);
  const std::string letters(kLarge, 'a');
  const auto text = make<NSAttributedString>(makeString(letters));
  const auto wide = make<NSMutableString>(std::u16string(19, u'\u0416'));
  const auto holder = make<Holder>();
  holder->first = doubled(s("a"), 22);
  holder->second = doubled(s("b"), 23);
  const struct {
    Strong<NSObject> root;
    std::string_view why;
  } rows[] = {
      {many(100, [&](int) { return make<NSMutableData>(bytes); }), "equal mutable data, each of its own"},
      {many(100, [&](int) { return make<NSMutableString>(letters); }), "equal mutable strings"},
      {many(100, [&](int) { return makeString(letters); }), "equal strings, each an object"},
      {many(100, [&](int) { return make<NSMutableAttributedString>(text->string()); }), "one text of many"},
      {many(100, [&](int) { return make<NSURL>(URL::fromUncheckedText(letters)); }), "long links"},
      {doubled(make<NSAttributedString>(wide), 21), "wide text, whose bytes count as parts"},
      {doubled(wide, 21), "the same, mutable"},
      {holder, "more parts in an object of the application than a collection may have"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    Strong<NSError> why;
    const auto data = NSKeyedArchiver::archivedDataWithRootObject(row.root, false, &why);
    ASSERT_TRUE(data) << ::havrin::text(why);
    const Read back = read(data);
    EXPECT_TRUE(back.root);
    EXPECT_EQ(back.error, "");
  }
}

TEST(ArchiveLimits, AnArchiveThatGoesOnHoldsNothingTwice) {
  const auto archiver = make<NSKeyedArchiver>();
  archiver->encodeObject(letters("abc"), "root");
  const auto first = archiver->encodedData();
  EXPECT_EQ(text(archiver->encodedData()), text(first));
  archiver->encodeInteger(7, "more");
  const auto second = archiver->encodedData();
  const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(second, nullptr);
  EXPECT_EQ(unarchiver->decodeIntegerForKey("more"), 7);
  EXPECT_EQ(read(second).root->isEqual(letters("abc")), true);
  EXPECT_LT(second->length(), first->length() + 16);
}

TEST(ArchiveLimits, AClassIsWrittenUnderANameThatIsItsOwn) {
  const auto written = [] {
    const auto data = NSKeyedArchiver::archivedDataWithRootObject(make<Holder>(), false, nullptr);
    return data ? classOf(*read(data).root).name() : "none";
  };
  EXPECT_EQ(written(), "Holder");
  NSKeyedUnarchiver::setClass(classOf<Holder>(), "Second");
  NSKeyedUnarchiver::setClass(classOf<NSArray>(), "Holder");
  EXPECT_EQ(written(), "Holder") << "under its second name, since the first means another class now";
  NSKeyedUnarchiver::setClass(nullptr, "Second");
  EXPECT_EQ(written(), "none");
  NSKeyedUnarchiver::setClass(classOf<Holder>(), "Holder");
  EXPECT_EQ(written(), "Holder");
}

}  // namespace
