// SPDX-License-Identifier: Apache-2.0
// Each archive is read in a process of its own, which checks how much memory that took; what was read is released there,
// so that chains which would nest on the stack show.
#include "hostile_archives.h"
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/ns_url.h>

#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace havrin {
namespace {

using namespace samples;

// The address sanitizer keeps what is freed.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMeasuresMemory = false;
#elif defined(__has_feature)
constexpr bool kMeasuresMemory = !__has_feature(address_sanitizer);
#else
constexpr bool kMeasuresMemory = true;
#endif

// A figure of this process, as "VmRSS:".
std::size_t bytesOf(std::string_view key) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (!line.starts_with(key)) std::getline(status, line);
  return std::stoul(line.substr(key.size())) << 10;
}

// Decodes the root, uses what comes of it as a set would, and releases it. Result: why it could not; "none" where it
// could.
std::string errorOf(NSData* data) {
  Strong<NSError> untouched;
  const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(data, &untouched);
  if (!unarchiver) {
    EXPECT_EQ(untouched->code(), NSCoderReadCorruptError);
    return textOf(untouched);
  }
  unarchiver->setRequiresSecureCoding(false);
  const auto read = unarchiver->decodeObjectForKey("root");
  EXPECT_FALSE(untouched) << "creation did not fail";
  if (read) (void)read->hash();
  EXPECT_FALSE(read && unarchiver->hasFailed());
  return read || unarchiver->hasFailed() ? textOf(unarchiver->error()) : "null";
}

bool isDecoded(NSData* data) { return errorOf(data) == "none"; }

// Ends this process: with 0 when reading gives that error and takes at most 64 MiB beyond the archive.
[[noreturn]] void readAndExit(const Strong<NSData>& data, std::string_view wanted) {
  std::ofstream("/proc/self/clear_refs") << 5;  // the peak begins anew: what making the archive took does not count
  const bool hadFailed = testing::Test::HasFailure();
  const std::size_t before = bytesOf("VmRSS:");
  const std::string error = errorOf(data);
  const std::size_t more = bytesOf("VmHWM:") - before;
  std::fprintf(stderr, "%s, and %zu bytes more\n", error.c_str(), more);
  const bool isLittle = !kMeasuresMemory || more < std::size_t{64} << 20;
  _exit(saysWhy(error, wanted) && isLittle && testing::Test::HasFailure() == hadFailed ? 0 : 1);
}

constexpr std::string_view kTooDeep = "objects are nested deeper than 1024 levels";
constexpr std::string_view kTooMuch = "shared objects expand beyond the size limit";
constexpr std::string_view kTooLarge = "the objects take too much memory for an archive of this size";
constexpr std::string_view kTooHard = "too many colliding keys or set members";

TEST(HostileArchiveDeathTest, IsRefusedOrReadInLittleMemory) {
  const struct {
    std::string_view why;
    Strong<NSData> (*archive)();
    std::string_view error;
  } rows[] = {
      {"shared parts without bound", laughs, kTooMuch},
      {"a million arrays inside each other", deepNest, kTooDeep},
      {"a chain of arrays", chainOfArrays, kTooDeep},
      {"a long text in many sets", [] { return longTexts("NSSet", "NS.objects"); }, kTooHard},
      {"a long text as many links", [] { return longTexts("NSURL", "NS.relative"); }, kTooLarge},
      {"a long text as many attributed texts", [] { return longTexts("NSMutableAttributedString", "NSString"); },
       kTooLarge},
      {"a long text as many mutable ones", [] { return longTexts("NSMutableString", "NS.string"); }, kTooLarge},
      {"a long text as a key of many dictionaries", longKeys, kTooLarge},
      {"a long base of many links", longBases, kTooLarge},
      {"a large dictionary of attributes in many texts", [] { return largeAttributes(2000, 2); }, kTooLarge},
      {"a large dictionary of attributes of many runs", [] { return largeAttributes(1, kMany); }, kTooMuch},
      {"equal long keys in arrays", [] { return equalKeys("NSArray"); }, "expected array, got no value"},
      {"equal long keys in ordered sets", [] { return equalKeys("NSOrderedSet"); }, kTooHard},
      {"large members of one hash among many small ones", membersOfOneHash, kTooHard},
      {"sets of sets of one hash", setsOfSets, kTooHard},
      {"numbers that would crowd a table", crowdingNumbers, "none"},
      {"many class hints of many records", hints, kTooLarge},
      {"one text as many objects", oneTextAsManyObjects, kTooLarge},
      {"one object a million times in a set", [] { return manyReferences("NSSet"); }, kTooLarge},
      {"XML: many small parts", xmlOfArrays, "none"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    const auto data = row.archive();
    malloc_trim(0);  // so that what is free does not hide what is taken
    EXPECT_EXIT(readAndExit(data, row.error), testing::ExitedWithCode(0), "");
  }
}

TEST(HostileArchive, IsRefusedWhereverItIsCutAndHarmlessWhereverItIsDamaged) {
  const auto text = makeString("hello"), wide = makeString(u"\u00FC");
  const auto members = makeOrderedSet({wide, text});
  const auto dictionary = makeDictionary({{text, members}, {wide, text}});
  const auto node = make<Node>();
  node->name = text;
  const auto binary = archived(makeArray({members, dictionary, make<NSURL>(*URL::fromString("hello")),
                                          make<NSAttributedString>(text, dictionary), node})
                                   ->mutableCopy());
  const auto xml =
      xmlArchive({object(2, key("NS.objects", references({3, 4}))), classRecord("NSSet"), "<integer>7</integer>",
                  object(5, key("NS.time", "<real>1</real>")), classRecord("NSDate")});
  for (const auto& whole : {binary, xml}) {
    ASSERT_TRUE(isDecoded(whole));
    const auto bytes = whole->bytes();
    for (std::size_t size = 0; size < bytes.size(); ++size) EXPECT_FALSE(isDecoded(makeData(bytes.first(size))));
    std::vector<std::byte> damaged(bytes.begin(), bytes.end());
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      for (const int byte : {0x00, 0x01, 0x7F, 0x80, 0xFF, std::to_integer<int>(bytes[at]) ^ 1}) {
        damaged[at] = static_cast<std::byte>(byte);
        (void)isDecoded(makeData(damaged));
      }
      damaged[at] = bytes[at];
    }
  }
  EXPECT_EQ(Node::alive, 1);
}

TEST(HostileArchive, HoldsNoCollectionThatHoldsItself) {
  const auto holding = [](std::string_view cls, const std::string& values) {
    return xmlArchive({object(2, values), classRecord(cls), "<string>x</string>",
                       object(5, key("NS.objects", references({1}))), classRecord("NSArray")});
  };
  const std::string text = key("NSString", uid(3));
  for (const auto& data : {
           holding("NSMutableArray", key("NS.objects", references({3, 1}))),
           holding("NSSet", key("NS.objects", references({4}))),
           holding("NSOrderedSet", key("NS.object.0", uid(4))),
           holding("NSDictionary", key("NS.keys", references({3})) + key("NS.objects", references({4}))),
           holding("NSDictionary", key("NS.keys", references({4})) + key("NS.objects", references({3}))),
           holding("NSURL", key("NS.base", uid(1)) + key("NS.relative", uid(3))),
           holding("NSAttributedString", text + key("NSAttributes", uid(1))),
           holding("NSAttributedString", text + key("NSAttributes", uid(4))),
           holding("NSMutableString", key("NS.string", uid(1))),
           holding("NSMutableData", key("NS.data", uid(1))),
       }) {
    EXPECT_TRUE(saysWhy(failureOf(data), "object 1 contains itself"));
  }
  // Its class is itself: harmless, and a class for nothing else.
  const std::string own = key("$classname", "<string>NSArray</string>");
  EXPECT_TRUE(isDecoded(xmlArchive({object(1, own + key("NS.objects", "<array/>"))})));
  EXPECT_FALSE(isDecoded(xmlArchive({object(1, own + key("NS.objects", references({2}))), object(1, own)})));
  EXPECT_FALSE(isDecoded(xmlArchive({object(2, ""), object(1, "")})));
}

}  // namespace
}  // namespace havrin
