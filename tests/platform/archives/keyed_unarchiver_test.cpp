// SPDX-License-Identifier: Apache-2.0
#include "archive_samples.h"
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/ns_url.h>

namespace havrin {
namespace {

using namespace samples;

TEST(KeyedUnarchiver, ReturnsOnlyObjectsOfTheAllowedClasses) {
  const auto text = makeString("x");
  const auto puppet = make<Puppet>();
  const auto node = make<Node>();
  node->name = text;
  const auto link = make<NSURL>(*URL::fromString("c", *URL::fromString("https://h/a/b")));
  const auto styled = [](NSObject* value) {
    return make<NSAttributedString>(makeString("On air"), makeDictionary({{makeString("key"), value}}));
  };
  const Class none, strings = classOf<NSString>(), arrays = classOf<NSArray>(), objects = classOf<NSObject>();
  for (const auto& [written, allowed, reason, why] :
       Rows<Strong<NSObject>, std::vector<Class>, std::string, std::string_view>{
           {text, {strings}, "none", "the class itself"},
           {text, {classOf<NSObject>()}, "none", "a subclass"},
           {text, {arrays}, "class \"NSString\" is not among the allowed classes", "another class"},
           {text, {classOf<NSMutableString>()}, "class \"NSString\" is not among the allowed classes", "a class above"},
           {text, {none}, "class \"NSString\" is not among the allowed classes", "no class"},
           {text, {arrays, strings}, "none", "one of several"},
           {makeArray({text}), {arrays}, "object 1: class \"NSString\"", "another class in a collection"},
           {makeArray({makeSet({text})}), {arrays, strings}, "\"NSSet\" is not among", "a collection in another"},
           {makeDictionary({{text, makeNumber(1)}}), {classOf<NSDictionary>(), strings}, "\"NSNumber\"", "a value"},
           {makeArray({text}), {arrays, strings}, "none", "with the class of its element"},
           {puppet, {objects}, "class \"Puppet\" does not adopt NSSecureCoding", "no promise of secure coding"},
           {makeArray({puppet}), {objects}, "class \"Puppet\" does not adopt NSSecureCoding", "inside, too"},
           {node, {classOf<Node>()}, "none", "objects name the classes of their own values"},
           {makeArray({node}),
            {arrays},
            "class \"Node\" is not among the allowed classes",
            "an object in a collection"},
           {link, {classOf<NSURL>()}, "none", "a link names the classes of its parts"},
           {styled(makeNumber(1)), {classOf<NSAttributedString>()}, "none", "attributes of the layer's classes"},
           {styled(node), {classOf<NSAttributedString>()}, "class \"Node\" is not among", "other attributes"},
           {styled(node),
            {classOf<NSAttributedString>(), classOf<Node>()},
            "none",
            "other attributes that are asked for"},
           {nullptr, {objects}, "Code=4865 \"the root object is null or missing\"", "null"},
       }) {
    SCOPED_TRACE(why);
    const auto data = archived(written);
    Strong<NSError> error;
    std::vector<NSObject*> classes;
    for (const Class cls : allowed) {
      if (cls) classes.push_back(cls);
    }
    const auto set = make<NSSet>(std::span<NSObject* const>(classes));
    const auto read = allowed.size() == 1 ? NSKeyedUnarchiver::unarchivedObjectOfClass(allowed[0], data, &error)
                                          : NSKeyedUnarchiver::unarchivedObjectOfClasses(set, data, &error);
    EXPECT_EQ(read != nullptr, reason == "none");
    EXPECT_TRUE(saysWhy(textOf(error), reason));
  }
  const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(archived(text), nullptr);
  EXPECT_FALSE(unarchiver->decodeObjectForKey("root")) << "names no class";
  EXPECT_TRUE(saysWhy(textOf(unarchiver->error()), "is not allowed with secure coding"));
}

// The contents of what was read before are held to the classes that are asked for now.
TEST(KeyedUnarchiver, ChecksSharedObjectsUnderEachSetOfClasses) {
  const auto inner = makeArray({makeNumber(1)});
  const auto archiver = make<NSKeyedArchiver>();
  archiver->encodeObject(inner, "wide");
  archiver->encodeObject(makeArray({inner}), "narrow");
  const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(archiver->encodedData(), nullptr);
  EXPECT_TRUE(unarchiver->decodeObjectOfClass(classOf<NSObject>(), "wide"));
  EXPECT_FALSE(unarchiver->decodeObjectOfClasses(makeSet({classOf<NSArray>(), classOf<NSString>()}), "narrow"));
  EXPECT_TRUE(saysWhy(textOf(unarchiver->error()), "\"NSNumber\" is not among"));

  const auto attributes = makeDictionary({{makeString("NSLink"), makeNumber(1)}, {makeString("own"), make<Node>()}});
  const auto styled = make<NSAttributedString>(makeString("text"), attributes);
  const auto again = alloc<NSKeyedUnarchiver>()->initForReadingFromData(archived(styled, true), nullptr);
  const auto both = makeSet({classOf<NSAttributedString>(), classOf<Node>()});
  const Strong<NSObject> read = again->decodeObjectOfClasses(both, "root");
  EXPECT_TRUE(read);
  EXPECT_EQ(again->decodeObjectOfClasses(both, "root"), read);
  EXPECT_FALSE(again->decodeObjectOfClass(classOf<NSAttributedString>(), "root"));
  EXPECT_TRUE(saysWhy(textOf(again->error()), "\"Node\" is not among the allowed classes"));
}

TEST(KeyedUnarchiver, ReturnsNothingAfterTheFirstFailure) {
  const auto archiver = make<NSKeyedArchiver>();
  archiver->encodeObject(makeString("x"), "text");
  archiver->encodeInteger(7, "seven");
  archiver->encodeDouble(0.5, "half");
  archiver->encodeBool(true, "yes");
  archiver->encodeBytes(makeData("b")->bytes(), "bytes");
  const auto data = archiver->encodedData();
  for (const bool raises : {false, true}) {
    const auto unarchiver = unarchiverOf(data);
    if (raises) unarchiver->setDecodingFailurePolicy(NSDecodingFailurePolicy::RaiseException);
    EXPECT_EQ(unarchiver->decodeIntegerForKey("seven"), 7);
    EXPECT_EQ(unarchiver->decodeIntegerForKey("eight"), 0) << "a missing value is not a failure";
    EXPECT_FALSE(unarchiver->error());
    EXPECT_EQ(nameOf([&] { EXPECT_EQ(unarchiver->decodeIntegerForKey("half"), 0); }),
              raises ? NSInvalidUnarchiveOperationException : "none");
    const auto first = unarchiver->error();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->code(), NSCoderReadCorruptError);
    EXPECT_TRUE(first->domain()->isEqual(makeString("NSCocoaErrorDomain")));
    EXPECT_FALSE(unarchiver->containsValueForKey("text") || unarchiver->decodeObjectForKey("text") ||
                 unarchiver->decodeIntegerForKey("seven") || unarchiver->decodeDoubleForKey("half") > 0 ||
                 unarchiver->decodeBoolForKey("yes") || !unarchiver->decodeBytesForKey("bytes").empty());
    EXPECT_EQ(nameOf([&] { unarchiver->failWithError(makeCodingError(NSCoderInvalidValueError, "second")); }),
              raises ? NSInvalidUnarchiveOperationException : "none");
    EXPECT_EQ(unarchiver->error(), first);
  }
}

TEST(KeyedUnarchiver, RefusesAValueOfAnotherKind) {
  using Decode = std::function<bool(NSKeyedUnarchiver&)>;
  const auto isBool = [](NSKeyedUnarchiver& u) { return u.decodeBoolForKey("v"); };
  const auto isLong = [](NSKeyedUnarchiver& u) { return u.decodeIntegerForKey("v") != 0; };
  const auto isInt = [](NSKeyedUnarchiver& u) { return u.decodeInt32ForKey("v") != 0; };
  const auto isDouble = [](NSKeyedUnarchiver& u) { return u.decodeDoubleForKey("v") != 0; };
  const auto isFloat = [](NSKeyedUnarchiver& u) { return u.decodeFloatForKey("v") != 0; };
  const auto isBytes = [](NSKeyedUnarchiver& u) { return !u.decodeBytesForKey("v").empty(); };
  const auto isText = [](NSKeyedUnarchiver& u) { return u.decodeObject<NSString>("v") != nullptr; };
  for (const auto& [value, decode, reason] : Rows<std::string, Decode, std::string>{
           {"<integer>2147483647</integer>", isInt, "none"},
           {"<integer>2147483648</integer>", isInt, "does not fit into 32 bits"},
           {"<integer>-2147483649</integer>", isInt, "does not fit into 32 bits"},
           {"<integer>18446744073709551615</integer>", isLong, "expected integer, got"},
           {"<real>3.4e38</real>", isFloat, "none"},
           {"<real>3.5e38</real>", isFloat, "too large for a float"},
           {"<real>-inf</real>", isFloat, "none"},
           {"<integer>1</integer>", isDouble, "expected real, got integer"},
           {"<real>1</real>", isLong, "expected integer, got"},
           {"<true/>", isLong, "expected integer, got"},
           {"<integer>1</integer>", isBool, "expected boolean, got integer"},
           {"<string>1</string>", isBytes, "expected data, got text"},
           {"<string>1</string>", isText, "expected reference to an object, got another value"},
           {uid(1), isLong, "expected integer, got"},
           {uid(1), isText, "expected NSString, got NSNumber (key \"v\")"},
           {references({1}), isText, "expected reference to an object, got another value"},
           {uid(0), isText, "absent"},
       }) {
    SCOPED_TRACE(value + ": " + reason);
    const auto unarchiver = unarchiverOf(xmlArchive({"<integer>5</integer>"}, key("v", value)));
    EXPECT_EQ(decode(*unarchiver), reason == "none");
    const std::string error = textOf(unarchiver->error());
    EXPECT_TRUE(saysWhy(error, reason == "absent" ? "none" : reason));
  }
}

/// Cannot be made before its values are known.
class Needy : public Object<Needy, NSObject> {
 public:
  explicit Needy(int) {}
  Strong<NSObject> initWithCoder(NSCoder*) { return this; }
  using Protocols = List<NSCoding>;
  using Members = List<Method<"initWithCoder:", &Needy::initWithCoder>>;
};

TEST(KeyedUnarchiver, ReportsWhatIsWrongWithAnObject) {
  NSKeyedUnarchiver::setClass(classOf<Needy>(), "Needy");
  const std::string hello = "<string>hello</string>", empty = "<array/>";
  for (const auto& [objects, reason] : Rows<std::vector<std::string>, std::string>{
           {std::vector<std::string>(), "at the top: reference to object 1, which does not exist"},
           {{"<dict/>"}, "object 1: it has no valid \"$class\""},
           {{object(1, "")}, "object 1: its class record has no \"$classname\""},
           {{object(9, "")}, "object 1: it has no valid \"$class\""},
           {{object(2, ""), hello}, "object 1: it has no valid \"$class\""},
           {{object(2, ""), "<dict><key>$classname</key><true/></dict>"},
            "object 1: its class record has no \"$classname\""},
           {{object(2, ""), classRecord("Hidden")}, "object 1: unknown class \"Hidden\""},
           {{object(2, ""), classRecord("Needy")}, "has no default constructor"},
           {{object(2, ""), classRecord("NSArray")}, "object 1: expected array, got no value (key \"NS.objects\")"},
           {{object(2, key("NS.objects", uid(0))), classRecord("NSArray")},
            "expected array, got reference (key \"NS.objects\")"},
           {{object(2, key("NS.objects", "<array><true/></array>")), classRecord("NSArray")}, "is not a reference"},
           {{object(2, key("NS.objects", references({0}))), classRecord("NSSet")},
            "object 1: a collection contains null"},
           {{object(2, key("NS.objects", references({2}))), classRecord("NSSet")},
            "expected an object, got a class record"},
           {{object(2, key("NS.objects", empty)), classRecord("NSDictionary")},
            "expected array, got no value (key \"NS.keys\")"},
           {{object(2, key("NS.objects", empty) + key("NS.keys", references({3}))), classRecord("NSDictionary"), hello},
            "a dictionary of 1 keys and 0 values"},
           {{object(2, key("NS.keys", references({3})) + key("NS.objects", references({3}))),
             classRecord("NSDictionary"), object(4, ""), classRecord("Node")},
            "invalid dictionary key"},
           {{object(2, key("NS.object.1", uid(3))), classRecord("NSOrderedSet"), hello},
            "are not numbered consecutively"},
           {{object(2, key("NS.uuidbytes", "<data>AAAA</data>")), classRecord("NSUUID")},
            "expected 16 bytes, got 3 bytes (key \"NS.uuidbytes\")"},
           {{object(2, key("NS.time", "<integer>1</integer>")), classRecord("NSDate")},
            "expected real, got integer (key \"NS.time\")"},
           {{object(2, ""), classRecord("NSDate")}, "expected real, got no value (key \"NS.time\")"},
           {{object(2, ""), classRecord("NSURL")}, "expected NSString, got no object (key \"NS.relative\")"},
           {{object(2, key("NS.relative", uid(3)) + key("NS.base", uid(3))), classRecord("NSURL"), hello},
            "expected NSURL, got NSString (key \"NS.base\")"},
           {{object(2, ""), classRecord("NSNumber")}, "NSNumber must be a plain value, got a record"},
           {{object(2, ""), classRecord("NSMutableString")}, "expected NSString, got no object (key \"NS.string\")"},
           {{object(2, ""), classRecord("NSMutableData")}, "expected NSData, got no object (key \"NS.data\")"},
           {{object(2, key("NSString", uid(3)) + key("NSAttributes", uid(3))), classRecord("NSAttributedString"),
             hello},
            "the attributes do not match the text"},
           {{empty}, "expected an object, got a reference, an array or a dictionary"},
           {{uid(1)}, "expected an object, got a reference, an array or a dictionary"},
       }) {
    SCOPED_TRACE(reason);
    const std::string error = failureOf(xmlArchive(objects));
    EXPECT_TRUE(saysWhy(error, reason));
  }
}

}  // namespace
}  // namespace havrin
