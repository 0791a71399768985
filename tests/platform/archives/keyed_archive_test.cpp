// SPDX-License-Identifier: Apache-2.0
#include "../../temporary_folder.h"
#include "archive_samples.h"
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/platform/foundation/ns_url.h>
#include <HavrinFoundation/platform/foundation/ns_uuid.h>

namespace havrin {
namespace {

using namespace samples;

// One value of each kind; looks at them when it is read.
class Scalars : public Object<Scalars, NSObject> {
 public:
  void encodeWithCoder(NSCoder* coder) const {
    coder->encodeBool(true, "yes");
    coder->encodeBool(false, "no");
    coder->encodeInteger(7, "small");
    coder->encodeInteger(std::int64_t{1} << 40, "large");
    coder->encodeInteger(std::numeric_limits<std::int64_t>::min(), "negative");
    coder->encodeDouble(0.25, "real");
    coder->encodeBytes(std::as_bytes(std::span("\1\2", 2)), "bytes");
    coder->encodeInteger(3, "$dollar");
    coder->encodeObject(makeString("$"), "$object");
    coder->encodeObject(nullptr, "none");
  }
  Strong<NSObject> initWithCoder(NSCoder* coder) {
    EXPECT_TRUE(coder->decodeBoolForKey("yes") && !coder->decodeBoolForKey("no"));
    EXPECT_EQ(coder->decodeInt32ForKey("small"), 7);
    EXPECT_EQ(coder->decodeIntegerForKey("large"), std::int64_t{1} << 40);
    EXPECT_EQ(coder->decodeIntegerForKey("negative"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(coder->decodeDoubleForKey("real"), 0.25);
    EXPECT_EQ(coder->decodeFloatForKey("real"), 0.25F);
    EXPECT_EQ(coder->decodeIntegerForKey("$dollar"), 3);
    EXPECT_TRUE(coder->containsValueForKey("none") && !coder->decodeObjectForKey("none"));
    EXPECT_FALSE(coder->containsValueForKey("class"));
    EXPECT_TRUE(makeData(coder->decodeBytesForKey("bytes"))->isEqual(makeData("\1\2")));
    EXPECT_EQ(text(coder->decodeObjectForKey("$object")), "$");
    return this;
  }
  bool isEqual(const NSObject* other) const override { return cast<Scalars>(other); }
  Strong<NSString> description() const override { return makeString("one of each kind"); }
  using Protocols = List<NSCoding>;
  using Members =
      List<Method<"encodeWithCoder:", &Scalars::encodeWithCoder>, Method<"initWithCoder:", &Scalars::initWithCoder>>;
};
const ArchivedClass<Scalars> kArchivedScalars("Scalars");

Strong<NSData> fixture(const std::string& name) {
  const std::string bytes = bytesOfFile(std::filesystem::path(HAVRIN_FIXTURES) / name);
  EXPECT_FALSE(bytes.empty()) << name << " is not there: keyed_archive_oracle.py makes it";
  return makeData(bytes);
}

// What the script looks at afterwards.
void keep(const std::string& name, const NSData& data) {
  std::filesystem::create_directories(HAVRIN_WRITTEN);
  std::ofstream(std::filesystem::path(HAVRIN_WRITTEN) / (name + ".bplist"), std::ios::binary)
      .write(reinterpret_cast<const char*>(data.bytes().data()), static_cast<std::streamsize>(data.length()));
}

Strong<NSDictionary> sized(int points) { return makeDictionary({{makeString("NSFont"), makeNumber(points)}}); }

Strong<NSAttributedString> attributed(std::string_view text,
                                      const std::vector<std::pair<Strong<NSDictionary>, std::uint64_t>>& parts) {
  std::vector<NSAttributedString::Run> runs;
  std::uint64_t end = 0;
  for (const auto& [attributes, length] : parts) {
    runs.push_back({attributes, {end, length}});
    end += length;
  }
  return make<NSAttributedString>(makeString(text), std::span<const NSAttributedString::Run>(runs));
}

struct Sample {
  std::string name;
  Strong<NSObject> object;
};

// The graphs of keyed_archive_oracle.py without cycles, by name.
std::vector<Sample> samplesBothWays() {
  std::string everyByte;
  for (int i = 0; i < 256; ++i) everyByte += static_cast<char>(i);
  const auto twelve = make<NSMutableArray>();
  for (int i = 0; i < 12; ++i) twelve->addObject(makeString(std::to_string(i)));
  UUID::Bytes id;
  for (std::size_t i = 0; i < id.size(); ++i) id[i] = static_cast<std::uint8_t>(0xF0 + i);
  const auto page = URL::fromString("../d?e", *URL::fromString("https://havrin.example/a/b/c"));
  return {
      {"nothing", nullptr},
      {"string", makeString("hello")},
      {"wide_string", makeString("Zürich \U0001F44D")},
      {"mutable_string", make<NSMutableString>("grows")},
      {"numbers", makeArray({makeNumber(0), makeNumber(255), makeNumber(256), makeNumber(65536),
                             makeNumber(std::int64_t{1} << 32), makeNumber(std::numeric_limits<std::int64_t>::max()),
                             makeNumber(std::uint64_t{1} << 63), makeNumber(std::numeric_limits<std::uint64_t>::max()),
                             makeNumber(-1), makeNumber(std::numeric_limits<std::int64_t>::min()), makeNumber(0.5),
                             makeNumber(-1e300), makeNumber(true), makeNumber(false)})},
      {"null", NSNull::null()},
      {"data", makeData(everyByte)},
      {"mutable_data", makeData(std::string_view("\0\xFF", 2))->mutableCopy()},
      {"array", makeArray({makeString("a"), makeNumber(1), makeNumber(true)})},
      {"mutable_array", makeArray({makeString("a"), makeArray({})})->mutableCopy()},
      {"dictionary", makeDictionary({{makeString("a"), makeNumber(1)}, {makeString("b"), makeDictionary({})}})},
      {"mutable_dictionary", makeDictionary({{makeString("a"), makeSet({makeNumber(2)})}})->mutableCopy()},
      {"set", makeSet({makeString("a"), makeString("b")})},
      {"mutable_set", makeSet({makeNumber(7)})->mutableCopy()},
      {"ordered_set", NSOrderedSet::orderedSetWithArray(classOf<NSOrderedSet>(), twelve)},
      {"mutable_ordered_set", makeOrderedSet({makeString("b"), makeString("a")})->mutableCopy()},
      {"date", make<NSDate>(Date::fromTimeIntervalSinceReferenceDate(730902896.25))},
      {"identifier", make<NSUUID>(UUID(id))},
      {"link", NSURL::URLWithString(makeString("https://havrin.example/a?b=%20#c"))},
      {"relative_link", make<NSURL>(*page)},
      {"unchecked_link", make<NSURL>(URL::fromUncheckedText("no link at all"))},
      {"unchecked_relative_link", make<NSURL>(URL::fromUncheckedText("no link at all", *page))},
      {"attributed", make<NSAttributedString>(makeString("on air"), sized(9))},
      {"attributed_runs",
       attributed(std::string(300, 'x'), {{sized(9), 1}, {sized(10), 200}, {makeDictionary({}), 99}})},
      {"mutable_attributed", make<NSMutableAttributedString>(makeString("a"))},
      {"scalars", make<Scalars>()},
  };
}

std::vector<Sample> samplesReadOnly() {
  const auto once = makeArray({makeString("a")});
  return {
      {"data_of_class", makeData("inline")},
      {"data_of_data", makeData("apart")->mutableCopy()},
      {"string_of_string", make<NSMutableString>("apart")},
      {"string_of_class", makeString("inline")},
      {"ordered_set_of_objects", makeOrderedSet({makeString("b"), makeString("a")})},
      {"attributed_again", attributed("abcde", {{sized(9), 1}, {sized(12), 1}, {sized(9), 3}})},
      {"attributed_bare", make<NSAttributedString>(makeString("bare"))},
      {"hinted", once->mutableCopy()},
  };
}

void expectSame(NSObject* read, NSObject* wanted) {
  EXPECT_EQ(shapeOf(read), shapeOf(wanted));
  EXPECT_TRUE(read == wanted || (read && read->isEqual(wanted)));
}

TEST(KeyedArchive, IsReadAsAnotherArchiverWritesIt) {
  std::vector<Sample> all = samplesBothWays();
  for (Sample& sample : samplesReadOnly()) all.push_back(std::move(sample));
  for (const Sample& sample : all) {
    for (const char* const form : {".bplist", ".xml"}) {
      SCOPED_TRACE(sample.name + form);
      expectSame(root(fixture(sample.name + form)), sample.object);
    }
  }
}

// keyed_archive_oracle.py reads the files afterwards.
TEST(KeyedArchive, ReadsBackWhatItWrote) {
  for (const Sample& sample : samplesBothWays()) {
    SCOPED_TRACE(sample.name);
    const auto data = archived(sample.object);
    ASSERT_TRUE(data);
    keep(sample.name, *data);
    expectSame(root(data), sample.object);
  }
}

TEST(KeyedArchive, KeepsSharingAndNulls) {
  const auto text = makeString("twice");
  const auto numbers = make<NSMutableArray>();
  numbers->addObject(makeNumber(1));
  const auto shared = makeArray({text, text, numbers, makeDictionary({{text, numbers}}), numbers});
  const auto written = archived(shared);
  keep("shared", *written);
  for (const auto& data : {fixture("shared.bplist"), fixture("shared.xml"), written}) {
    const auto read = root(data);
    expectSame(read, shared);
    const auto at = [&read](std::uint64_t index) { return cast<NSArray>(read.get())->objectAtIndex(index); };
    EXPECT_EQ(at(0), at(1));
    EXPECT_EQ(at(2), at(4));
    const auto* const dictionary = cast<NSDictionary>(at(3).get());
    EXPECT_EQ(dictionary->objectForKey(text), at(2));
    EXPECT_EQ(dictionary->allKeys()->firstObject(), at(0));
  }
  const auto nulls = makeArray({NSNull::null(), makeDictionary({{makeString("k"), NSNull::null()}}), make<Node>()});
  keep("nulls", *archived(nulls));
  const auto read = root(fixture("nulls.xml"));
  EXPECT_EQ(shapeOf(read), shapeOf(nulls));
  EXPECT_FALSE(cast<Node>(cast<NSArray>(read.get())->lastObject().get())->child);
}

TEST(KeyedArchive, ReadsCyclesOfApplicationObjects) {
  const auto alone = make<Node>(), above = make<Node>(), below = make<Node>();
  alone->name = makeString("alone");
  above->name = makeString("above");
  below->name = makeString("below");
  alone->parent = alone;
  above->child = below;
  below->parent = above;
  keep("holding_itself", *archived(alone, true));
  keep("with_parent", *archived(above, true));
  alone->parent = nullptr;
  above->child = nullptr;
  for (const char* const form : {".bplist", ".xml"}) {
    for (const std::string name : {"holding_itself", "with_parent"}) {
      SCOPED_TRACE(name + form);
      Strong<NSError> error;
      const auto read = NSKeyedUnarchiver::unarchivedObjectOfClass(classOf<Node>(), fixture(name + form), &error);
      Node* const node = cast<Node>(read.get());
      ASSERT_TRUE(node) << textOf(error);
      Node* const holder = node->child ? cast<Node>(node->child.get()) : node;
      EXPECT_EQ(holder->parent, node);
      EXPECT_EQ(utf8(*holder->name), node->child ? "below" : "alone");
      holder->parent = nullptr;
    }
  }
}

Strong<NSObject> doubled(Strong<NSObject> inside, int times) {
  for (int i = 0; i < times; ++i) inside = makeArray({inside, inside});
  return inside;
}

template <class Make>
Strong<NSArray> many(int count, Make makeOne) {
  auto list = make<NSMutableArray>();
  for (int i = 0; i < count; ++i) list->addObject(makeOne(i));
  return list;
}

// What bounds hostile archives lets honest ones through.
TEST(KeyedArchive, ReadsBackLargeAndRepetitiveObjects) {
  const auto kName = makeString("name"), kGenres = makeString("genres"), kPlays = makeString("plays");
  const auto genres = makeSet({makeString("jazz"), makeString("news")});
  const auto nameOfStation = [](int i) { return makeString("Station " + std::to_string(i)); };
  const auto record = [&](int i) {
    return makeDictionary({{kName, nameOfStation(i)}, {kGenres, genres}, {kPlays, makeNumber(i % 7)}});
  };
  const auto different = make<NSMutableSet>();
  for (int i = 0; i < 1000; ++i) {
    different->addObject(makeDictionary({{kName, makeArray({makeArray({nameOfStation(i)})})}}));
  }
  std::vector<std::pair<Strong<NSDictionary>, std::uint64_t>> runs;
  for (int i = 0; i < 20'000; ++i) {
    runs.emplace_back(i % 2 ? makeDictionary({{kName, makeNumber(i)}, {kPlays, genres}}) : makeDictionary({}), 1);
  }
  const std::string letters(300'000, 'a');
  const auto text = make<NSAttributedString>(makeString(letters));
  const auto wide = make<NSMutableString>(std::u16string(19, u'\u0416'));
  Puppet::encode = [](const Puppet&, NSCoder& coder) {
    coder.encodeObject(doubled(makeString("a"), 22), "first");
    coder.encodeObject(doubled(makeString("b"), 23), "second");
  };
  Puppet::initialise = [](Puppet& self, NSCoder& coder) {
    EXPECT_TRUE(coder.decodeObjectForKey("first") && coder.decodeObjectForKey("second"));
    return &self;
  };
  for (const auto& [object, isCompared, why] : Rows<Strong<NSObject>, bool, std::string_view>{
           {many(20'000, record), true, "many records"},
           {different, true, "many members of one hash"},
           {attributed(std::string(runs.size(), 'x'), runs), true, "many runs"},
           {makeString(std::string(1'000'000, 'x')), true, "a long text"},
           {many(100, [&](int) { return makeData(letters)->mutableCopy(); }), true,
            "equal mutable data, each of its own"},
           {many(100, [&](int) { return make<NSMutableString>(letters); }), true, "equal mutable strings"},
           {many(100, [&](int) { return makeString(letters); }), true, "equal strings, each an object"},
           {many(100, [&](int) { return make<NSMutableAttributedString>(text->string()); }), true, "one text of many"},
           {many(100, [&](int) { return make<NSURL>(URL::fromUncheckedText(letters)); }), true, "long links"},
           {doubled(make<NSAttributedString>(wide), 21), false, "wide text, whose bytes count as parts"},
           {doubled(wide, 21), false, "the same, mutable"},
           {make<Puppet>(), false, "more parts in an object of the application than a collection may have"},
       }) {
    SCOPED_TRACE(why);
    const auto read = root(archived(object));
    EXPECT_TRUE(read && (!isCompared || read->isEqual(object)));
  }
  Puppet::encode = nullptr;
  Puppet::initialise = nullptr;
}

}  // namespace
}  // namespace havrin
