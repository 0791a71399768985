// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/runtime/insecure_unarchiving_messages.h>

namespace havrin {
namespace {

// Adopts NSCoding alone.
struct Point : Object<Point, NSObject> {
  Strong<NSString> name;

  void encodeWithCoder(NSCoder* coder) const { coder->encodeObject(name, "name"); }
  Strong<NSObject> initWithCoder(NSCoder* coder) {
    name = coder->decodeObject<NSString>("name");
    return this;
  }
  using Protocols = List<NSCoding>;
  using Members =
      List<Method<"encodeWithCoder:", &Point::encodeWithCoder>, Method<"initWithCoder:", &Point::initWithCoder>>;
};
const ArchivedClass<Point> kArchivedPoint("Pt");

constexpr std::string_view kNoRoot = R"(<plist><dict>
  <key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key><integer>100000</integer>
  <key>$top</key><dict/><key>$objects</key><array><string>$null</string></array></dict></plist>)";

struct Unarchived {
  Strong<NSObject> object;
  Strong<NSError> error;
};

// By the message that names one class, and by the one that names several: both answer alike.
Unarchived unarchived(NSData* data, Class expected = classOf<NSArray>()) {
  const auto previous = make<NSError>(NSCocoaErrorDomain, 1);
  Unarchived one{nullptr, previous};
  Unarchived several{nullptr, previous};
  const auto receiver = classOf<NSKeyedUnarchiver>();
  one.object = send<"insecureUnarchivedObjectOfClass:fromData:error:">(receiver, expected, data, &one.error);
  several.object = send<"insecureUnarchivedObjectOfClasses:fromData:error:">(
      receiver, expected ? makeSet({expected}) : nullptr, data, &several.error);
  EXPECT_EQ(one.object == nullptr, several.object == nullptr);
  EXPECT_EQ(one.error->code(), several.error->code());
  if (one.error.get() == previous.get()) one.error = nullptr;
  return one;
}

TEST(InsecureUnarchiving, ReadsWhatWasArchivedWhicheverClassIsNamed) {
  const auto point = make<Point>();
  point->name = s("x");
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(makeArray({s("a"), point}), false, nullptr);
  for (const Class expected : {Class(classOf<NSArray>()), Class(classOf<NSString>()), Class()}) {
    const auto [object, error] = unarchived(data, expected);
    EXPECT_FALSE(error);
    const auto read = cast<NSArray>(object);
    ASSERT_TRUE(read && read->count() == 2) << expected.name();
    EXPECT_EQ(text(read->objectAtIndex(0)) + text(cast<Point>(read->objectAtIndex(1))->name), "ax");
  }
}

TEST(InsecureUnarchiving, ReportsAnErrorOnlyForBytesThatAreNotAnArchive) {
  for (const auto& [why, data, isArchive] : Rows<const char*, Strong<NSData>, bool>{
           {"null", nullptr, true},
           {"no bytes", makeData(""), false},
           {"a header alone", makeData("bplist00"), false},
           {"a property list that is not an archive", makeData("<plist><array/></plist>"), false},
           {"an archive without a root", makeData(kNoRoot), true},
       }) {
    SCOPED_TRACE(why);
    const auto [object, error] = unarchived(data);
    EXPECT_FALSE(object);
    EXPECT_EQ(error ? error->code() : 0, isArchive ? 0 : NSCoderReadCorruptError);
  }
}

// Notes its calls.
struct Witness : Object<Witness, NSKeyedUnarchiver> {
  static inline std::vector<std::string> seen;

  ~Witness() override { seen.emplace_back("ends"); }
  void setRequiresSecureCoding(bool required) override {
    seen.emplace_back(required ? "secure" : "insecure");
    NSKeyedUnarchiver::setRequiresSecureCoding(required);
  }
  Strong<NSObject> decodeObjectOfClass(Class cls, std::string_view key) override {
    seen.push_back("class under " + std::string(key));
    return NSKeyedUnarchiver::decodeObjectOfClass(cls, key);
  }
  Strong<NSObject> decodeObjectOfClasses(const NSSet* classes, std::string_view key) override {
    seen.push_back("classes under " + std::string(key));
    return NSKeyedUnarchiver::decodeObjectOfClasses(classes, key);
  }
};

TEST(InsecureUnarchiving, UsesAnUnarchiverOfTheReceivingClassAndReleasesIt) {
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(makeString("x"), false, nullptr);
  Strong<NSError> error;
  Witness::seen.clear();
  EXPECT_TRUE(
      send<"insecureUnarchivedObjectOfClass:fromData:error:">(classOf<Witness>(), classOf<NSString>(), data, &error));
  EXPECT_TRUE(send<"insecureUnarchivedObjectOfClasses:fromData:error:">(classOf<Witness>(),
                                                                        makeSet({classOf<NSString>()}), data, &error));
  EXPECT_EQ(Witness::seen, (std::vector<std::string>{"insecure", "class under root", "ends",  //
                                                     "insecure", "classes under root", "ends"}));
}

}  // namespace
}  // namespace havrin
