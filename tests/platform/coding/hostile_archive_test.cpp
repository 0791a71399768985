// Archives made by hand to do harm: each is read in a process of its own, with a small stack, and its memory is measured.
// Length: the forger and what it forges are of no use to another test.
#include <HavrinFoundation/platform/coding/binary_property_list_writer.h>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/net/ns_url.h>
#include "archive_samples.h"

#if defined(__SANITIZE_ADDRESS__)
#define HAVRIN_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HAVRIN_SANITIZED 1
#endif
#endif

namespace havrin {
namespace {

using namespace samples;

#ifdef HAVRIN_SANITIZED
constexpr bool kMeasuresMemory = false;  // the sanitizer keeps what is freed
constexpr std::size_t kSmallStack = std::size_t{2} << 20;
#else
constexpr bool kMeasuresMemory = true;
constexpr std::size_t kSmallStack = std::size_t{256} << 10;
#endif

// Writes archives of the binary form, objects by UID, without asking whether they make sense.
class Forger {
 public:
  using Number = BinaryPropertyListWriter::Number;
  using Uids = std::vector<std::uint64_t>;

  BinaryPropertyListWriter list;

  Forger() { add(list.text("$null")); }

  [[nodiscard]] std::uint64_t next() const { return objects_.size(); }

  std::uint64_t add(Number object) {
    objects_.push_back(object);
    return objects_.size() - 1;
  }

  std::uint64_t text(std::string_view text) { return add(list.text(text)); }

  Number references(const Uids& uids) {
    std::vector<Number> numbers;
    numbers.reserve(uids.size());
    for (const std::uint64_t uid : uids) numbers.push_back(list.uid(uid));
    return list.array(numbers);
  }

  std::uint64_t classNamed(std::string_view name) {
    const Number keys[] = {list.text("$classname")}, values[] = {list.text(name)};
    return add(list.dictionary(keys, values));
  }

  std::uint64_t instance(std::uint64_t cls, std::vector<std::pair<std::string_view, Number>> values) {
    values.emplace_back("$class", list.uid(cls));
    std::vector<Number> keys, numbers;
    for (const auto& [key, value] : values) {
      keys.push_back(list.text(key));
      numbers.push_back(value);
    }
    return add(list.dictionary(keys, numbers));
  }

  std::uint64_t row(std::uint64_t cls, const Uids& uids) { return instance(cls, {{"NS.objects", references(uids)}}); }

  std::uint64_t dictionary(std::uint64_t cls, const Uids& keys, const Uids& values) {
    return instance(cls, {{"NS.keys", references(keys)}, {"NS.objects", references(values)}});
  }

  // The archive with this object at its root.
  Strong<NSData> finish(std::uint64_t root) {
    const Number top[] = {list.text("root")}, uid[] = {list.uid(root)};
    const Number keys[] = {list.text("$archiver"), list.text("$version"), list.text("$top"), list.text("$objects")};
    const Number values[] = {list.text("NSKeyedArchiver"), list.integer(std::int64_t{100000}),
                             list.dictionary(top, uid), list.array(objects_)};
    return makeData(list.finish(list.dictionary(keys, values)));
  }

 private:
  std::vector<Number> objects_;
};

// Runs `body` in a thread with little stack.
template <class Body>
void onSmallStack(Body body) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack), 0);
  pthread_t thread;
  const auto run = [](void* given) -> void* {
    (*static_cast<Body*>(given))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &body), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

std::size_t residentBytes() {
  std::size_t total = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// Decodes the root, uses what comes of it as a set would, and lets it go in a thread with little stack. Result: why it
// could not; "none" where it could.
std::string errorOf(NSData* data) {
  Strong<NSError> untouched;
  auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(data, &untouched);
  if (!unarchiver) {
    EXPECT_EQ(untouched->code(), NSCoderReadCorruptError);
    return textOf(untouched);
  }
  unarchiver->setRequiresSecureCoding(false);
  auto read = unarchiver->decodeObjectForKey("root");
  EXPECT_FALSE(untouched) << "creation did not fail";
  if (read) (void)read->hash();
  EXPECT_FALSE(read && unarchiver->hasFailed());
  const std::string error = read || unarchiver->hasFailed() ? textOf(unarchiver->error()) : "null";
  onSmallStack([&] {
    read = nullptr;
    unarchiver = nullptr;
  });
  return error;
}

bool isDecoded(NSData* data) { return errorOf(data) == "none"; }

// What a case gives: in a process of its own, whose memory tells what it took beyond the archive.
struct Outcome {
  char error[160] = {};
  std::size_t peakBytes = 0;
  double seconds = 0;
};

Outcome outcomeOf(const Strong<NSData>& data) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  malloc_trim(0);  // so that what is free does not hide what is taken
  const bool hadFailed = testing::Test::HasFailure();
  const pid_t child = fork();
  if (child == 0) {
    // The peak begins anew: what making the archive took does not count.
    std::ofstream("/proc/self/clear_refs") << 5;
    Outcome outcome;
    const std::size_t before = residentBytes();
    const auto begin = std::chrono::steady_clock::now();
    errorOf(data).copy(outcome.error, sizeof outcome.error - 1);
    outcome.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    std::size_t peak = 0;
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmHWM:")) peak = std::stoul(line.substr(6)) << 10;
    }
    outcome.peakBytes = peak - std::min(peak, before);
    const bool isSaid = write(ends[1], &outcome, sizeof outcome) == sizeof outcome;
    _exit(isSaid && testing::Test::HasFailure() == hadFailed ? 0 : 1);
  }
  Outcome outcome;
  EXPECT_EQ(read(ends[0], &outcome, sizeof outcome), static_cast<ssize_t>(sizeof outcome));
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
  close(ends[0]);
  close(ends[1]);
  return outcome;
}

using Uids = Forger::Uids;

Uids repeated(std::uint64_t uid, std::size_t count) { return Uids(count, uid); }

Uids upTo(std::size_t count, const std::function<std::uint64_t(std::size_t)>& uid) {
  Uids uids;
  for (std::size_t i = 0; i < count; ++i) uids.push_back(uid(i));
  return uids;
}

// Arrays inside arrays, each before the one that it is in.
std::uint64_t nest(Forger& forger, std::uint64_t cls, std::size_t depth, std::uint64_t innermost) {
  for (std::size_t i = 0; i < depth; ++i) innermost = forger.row(cls, {innermost});
  return innermost;
}

struct Case {
  std::string_view why;
  Strong<NSData> (*archive)();
  std::string_view error;
};

constexpr std::string_view kTooDeep = "objects nest too deep";
constexpr std::string_view kTooMuch = "shared parts that stand for too much";
constexpr std::string_view kTooLarge = "the objects stand for more than an archive of this size should hold";
constexpr std::string_view kTooHard = "telling the objects apart takes more";

constexpr std::size_t kMany = 100'000;
constexpr std::size_t kHolders = 10'000;
const std::string kLong(500'000, 'x');

// Arrays that share their parts: 2 to the power of `levels` of them.
Strong<NSData> laughs() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray");
  std::uint64_t all = forger.text("ha");
  for (int level = 0; level < 40; ++level) all = forger.row(arrays, {all, all});
  return forger.finish(forger.row(forger.classNamed("NSSet"), {all}));
}

Strong<NSData> deepNest() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray");
  return forger.finish(nest(forger, arrays, 1'000'000, forger.text("in")));
}

// Each link of the chain is made before the next one holds it: nothing nests while it is read.
Strong<NSData> chain(std::string_view cls, std::size_t length) {
  Forger forger;
  const auto arrays = forger.classNamed(cls);
  std::uint64_t last = forger.text("first");
  const Uids all = upTo(length, [&](std::size_t) { return last = forger.row(arrays, {last}); });
  return forger.finish(forger.row(forger.classNamed("NSArray"), all));
}

Strong<NSData> chainOfNodes() {
  Forger forger;
  const auto nodes = forger.classNamed("Node");
  const auto name = forger.text("n");
  std::uint64_t last = 0;
  const Uids all = upTo(300'000, [&](std::size_t) {
    return last = forger.instance(nodes, {{"name", forger.list.uid(name)}, {"child", forger.list.uid(last)}});
  });
  return forger.finish(forger.row(forger.classNamed("NSArray"), all));
}

// One large part, which each of many objects has as its own.
template <class Make>
Strong<NSData> sharedBy(std::size_t count, std::string_view cls, Make make) {
  Forger forger;
  const auto holders = forger.classNamed(cls);
  const auto strings = forger.classNamed("NSMutableString");
  const auto large = forger.instance(strings, {{"NS.string", forger.list.text(kLong)}});
  const auto small = forger.text("small");
  const Uids all = upTo(count, [&](std::size_t) { return make(forger, holders, large, small); });
  return forger.finish(forger.row(forger.classNamed("NSArray"), all));
}

Strong<NSData> longTexts(std::string_view cls) {
  return sharedBy(kHolders, cls, [](Forger& forger, std::uint64_t holders, std::uint64_t large, std::uint64_t small) {
    return forger.instance(holders, {{"NS.objects", forger.references({large})},
                                     {"NS.relative", forger.list.uid(large)},
                                     {"NSString", forger.list.uid(large)},
                                     {"NS.string", forger.list.uid(large)},
                                     {"NS.base", forger.list.uid(0)},
                                     {"small", forger.list.uid(small)}});
  });
}

// One immutable text, which all may share.
Strong<NSData> sharedText() {
  Forger forger;
  const auto cls = forger.classNamed("NSAttributedString");
  const auto text = forger.text(kLong);
  return forger.finish(forger.row(forger.classNamed("NSArray"), upTo(200, [&](std::size_t) {
                                    return forger.instance(cls, {{"NSString", forger.list.uid(text)}});
                                  })));
}

Strong<NSData> basesOfLinks() {
  Forger forger;
  const auto links = forger.classNamed("NSURL");
  const auto link = [&](std::uint64_t text, std::uint64_t base) {
    return forger.instance(links, {{"NS.base", forger.list.uid(base)}, {"NS.relative", forger.list.uid(text)}});
  };
  const auto base = link(forger.text("https://h/" + kLong), 0);
  const auto text = forger.text("d");
  return forger.finish(
      forger.row(forger.classNamed("NSArray"), upTo(kHolders, [&](std::size_t) { return link(text, base); })));
}

Strong<NSData> longKeys() {
  return sharedBy(kHolders, "NSDictionary",
                  [](Forger& forger, std::uint64_t holders, std::uint64_t large, std::uint64_t small) {
                    return forger.dictionary(holders, {large}, {small});
                  });
}

// One large mutable dictionary as the attributes of many texts.
Strong<NSData> largeAttributes(std::size_t texts, std::size_t runs) {
  Forger forger;
  const auto cls = forger.classNamed("NSAttributedString");
  const auto arrays = forger.classNamed("NSArray");
  const auto dictionaries = forger.classNamed("NSMutableDictionary");
  const auto one = forger.text("1");
  const auto size = [&](std::size_t count, std::string_view prefix) {
    const Uids keys = upTo(count, [&](std::size_t i) { return forger.text(std::string(prefix) + std::to_string(i)); });
    return forger.dictionary(dictionaries, keys, repeated(one, count));
  };
  const auto attributes = forger.row(arrays, {size(5000, "k"), size(5000, "l")});
  const auto text = forger.text(std::string(runs, 'x'));
  std::vector<std::byte> bytes;
  for (std::size_t i = 0; i < runs; ++i) bytes.insert(bytes.end(), {std::byte{1}, static_cast<std::byte>(i & 1)});
  const auto info = forger.add(forger.list.data(bytes));
  const Uids all = upTo(texts, [&](std::size_t) {
    return forger.instance(cls, {{"NSString", forger.list.uid(text)},
                                 {"NSAttributes", forger.list.uid(attributes)},
                                 {"NSAttributeInfo", forger.list.uid(info)}});
  });
  return forger.finish(forger.row(arrays, all));
}

Strong<NSData> manyRuns() {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray"), dictionaries = forger.classNamed("NSDictionary");
  const auto key = forger.text("NSFont");
  const auto sized = [&](std::int64_t size) {
    return forger.dictionary(dictionaries, {key}, {forger.add(forger.list.integer(size))});
  };
  const auto attributes = forger.row(arrays, {sized(9), sized(12), sized(9)});
  std::vector<std::byte> bytes;
  for (std::size_t i = 0; i < 3 * kMany; ++i) bytes.insert(bytes.end(), {std::byte{1}, static_cast<std::byte>(i % 3)});
  return forger.finish(forger.instance(forger.classNamed("NSAttributedString"),
                                       {{"NSString", forger.list.uid(forger.text(std::string(3 * kMany, 'x')))},
                                        {"NSAttributes", forger.list.uid(attributes)},
                                        {"NSAttributeInfo", forger.list.uid(forger.add(forger.list.data(bytes)))}}));
}

// All keys of each object are one long text.
Strong<NSData> widest(std::string_view cls, bool isWide) {
  Forger forger;
  const auto holders = forger.classNamed(cls);
  const auto key = isWide ? forger.list.text(std::u16string(kLong.size(), u'\u00FC')) : forger.list.text(kLong);
  const auto nothing = forger.list.uid(0);
  const std::vector<Forger::Number> keys(20'000, key), values(20'000, nothing);
  auto manyKeys = keys, manyValues = values;
  manyKeys.push_back(forger.list.text("$class"));
  manyValues.push_back(forger.list.uid(holders));
  const Uids all = upTo(50, [&](std::size_t) { return forger.add(forger.list.dictionary(manyKeys, manyValues)); });
  return forger.finish(forger.row(forger.classNamed("NSArray"), all));
}

// Members that differ inside an array inside, which counts for nothing in their hash: `more` parts behind what differs
// not.
std::uint64_t alike(Forger& forger, std::uint64_t arrays, std::size_t number, std::uint64_t large) {
  return forger.row(arrays, {forger.row(arrays, {large, forger.text(std::to_string(number))})});
}

Strong<NSData> membersOfOneHash(std::size_t count, std::size_t other) {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray"), sets = forger.classNamed("NSSet");
  const auto large = forger.row(arrays, repeated(forger.text("x"), 10'000));
  Uids all = upTo(other, [&](std::size_t i) { return forger.text("small" + std::to_string(i)); });
  for (std::size_t i = 0; i < count; ++i) {
    const auto copy = forger.row(arrays, upTo(10'000, [&](std::size_t) { return large + 0; }));
    all.push_back(forger.row(arrays, {forger.row(arrays, {i < 2 ? copy : large, forger.text(std::to_string(i))})}));
  }
  return forger.finish(forger.row(sets, all));
}

// Sets of sets, `width` in each, all of one hash: comparing two of them is the square of what they hold.
Strong<NSData> setsOfSets(std::size_t width) {
  Forger forger;
  const auto arrays = forger.classNamed("NSArray"), sets = forger.classNamed("NSSet");
  const auto nothing = forger.text("x");
  std::size_t leaf = 0;
  const std::function<std::uint64_t(int)> level = [&](int depth) {
    if (depth == 0) return alike(forger, arrays, leaf++, nothing);
    return forger.row(sets, upTo(width, [&](std::size_t) { return level(depth - 1); }));
  };
  const auto one = level(3);
  leaf = 0;
  return forger.finish(forger.row(sets, {one, level(3)}));
}

Strong<NSData> crowdingNumbers() {
  Forger forger;
  const Uids all = upTo(kMany, [&](std::size_t i) {
    return forger.add(i % 2 ? forger.list.real(0.5 + static_cast<double>(i))
                            : forger.list.integer(static_cast<std::int64_t>(i) << 44));
  });
  return forger.finish(forger.row(forger.classNamed("NSSet"), all));
}

// Records of classes that find their class only behind all of their hints.
Strong<NSData> hints(std::size_t records) {
  Forger forger;
  std::vector<Forger::Number> names(kMany, forger.list.text("?"));
  names.push_back(forger.list.text("NSNull"));
  const auto all = forger.list.array(names), long_ = forger.list.text(kLong);
  const Uids nulls = upTo(records, [&](std::size_t) {
    const Forger::Number keys[] = {forger.list.text("$classname"), forger.list.text("$classhints")};
    const Forger::Number values[] = {long_, all};
    return forger.instance(forger.add(forger.list.dictionary(keys, values)), {});
  });
  return forger.finish(forger.row(forger.classNamed("NSArray"), nulls));
}

Strong<NSData> oneTextAsManyObjects() {
  Forger forger;
  const auto text = forger.list.text(kLong);
  return forger.finish(
      forger.row(forger.classNamed("NSArray"), upTo(kHolders, [&](std::size_t) { return forger.add(text); })));
}

Strong<NSData> manyReferences(std::string_view cls) {
  Forger forger;
  return forger.finish(forger.row(forger.classNamed(cls), repeated(forger.text("x"), 1'000'000)));
}

Strong<NSData> xmlNest(std::size_t depth) {
  std::vector<std::string> objects;
  for (std::size_t i = 1; i <= depth; ++i) objects.push_back(object(depth + 1, key("NS.objects", references({i + 1}))));
  objects.push_back(classRecord("NSArray"));
  return xmlArchive(objects);
}

Strong<NSData> xmlLaughs() {
  std::vector<std::string> objects;
  for (std::size_t i = 1; i <= 40; ++i) objects.push_back(object(41, key("NS.objects", references({i + 1, i + 1}))));
  objects[39] = "<string>ha</string>";
  objects.push_back(classRecord("NSArray"));
  return xmlArchive(objects);
}

Strong<NSData> xmlOfArrays() {
  std::string arrays = "<array>";
  for (std::size_t i = 0; i < kMany; ++i) arrays += "<array/>";
  return xmlArchive({"<string>x</string>"}, key("root", uid(1)) + key("more", arrays + "</array>"));
}

TEST(HostileArchive, GivesNothingOrWhatIsHarmlessInLittleMemory) {
  const Case cases[] = {
      {"shared parts without bound", laughs, kTooMuch},
      {"a million arrays inside each other", deepNest, kTooDeep},
      {"a chain of arrays", [] { return chain("NSArray", 3 * kMany); }, kTooDeep},
      {"a chain of sets", [] { return chain("NSMutableSet", kMany); }, kTooDeep},
      {"a chain of objects of the application", chainOfNodes, "none"},
      {"a long text in many sets", [] { return longTexts("NSSet"); }, kTooHard},
      {"a long text in many ordered sets", [] { return longTexts("NSOrderedSet"); }, kTooHard},
      {"a long text as many links", [] { return longTexts("NSURL"); }, kTooLarge},
      {"a long text as many attributed texts", [] { return longTexts("NSMutableAttributedString"); }, kTooLarge},
      {"a long immutable text as many attributed texts", sharedText, "none"},
      {"a long text as many mutable ones", [] { return longTexts("NSMutableString"); }, kTooLarge},
      {"a long text as a key of many dictionaries", longKeys, kTooLarge},
      {"a long base of many links", basesOfLinks, kTooLarge},
      {"a large dictionary of attributes in many texts", [] { return largeAttributes(2000, 2); }, kTooLarge},
      {"a large dictionary of attributes of many runs", [] { return largeAttributes(1, kMany); }, kTooMuch},
      {"many runs", manyRuns, "none"},
      {"long keys", [] { return widest("NSArray", false); }, "there is no array under"},
      {"long wide keys", [] { return widest("NSArray", true); }, "there is no array under"},
      {"long keys in an ordered set", [] { return widest("NSOrderedSet", false); }, kTooHard},
      {"large members of one hash", [] { return membersOfOneHash(200, 0); }, kTooMuch},
      {"large members of one hash among many small ones", [] { return membersOfOneHash(200, kMany); }, kTooMuch},
      {"sets of sets of one hash", [] { return setsOfSets(25); }, kTooHard},
      {"numbers that would crowd a table", crowdingNumbers, "none"},
      {"hints", [] { return hints(1); }, "none"},
      {"hints of many records", [] { return hints(1000); }, kTooLarge},
      {"one text as many objects", oneTextAsManyObjects, kTooLarge},
      {"one object a million times in an array", [] { return manyReferences("NSArray"); }, "none"},
      {"one object a million times in a set", [] { return manyReferences("NSSet"); }, kTooLarge},
      {"XML: arrays inside each other", [] { return xmlNest(5000); }, kTooDeep},
      {"XML: shared parts without bound", xmlLaughs, kTooMuch},
      {"XML: many small parts", xmlOfArrays, "none"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.why);
    const auto data = row.archive();
    const Outcome outcome = outcomeOf(data);
    EXPECT_TRUE(saysWhy(outcome.error, row.error));
    if (kMeasuresMemory) {
      EXPECT_LT(outcome.peakBytes, std::size_t{64} << 20);
    }
    std::printf("%-52s %7.1f MB archive %7.3f s %7.1f MB more\n", std::string(row.why).c_str(),
                static_cast<double>(data->length()) / (1 << 20), outcome.seconds,
                static_cast<double>(outcome.peakBytes) / (1 << 20));
  }
}

TEST(HostileArchive, IsNoneWhereverItIsCutAndNoHarmWhereverItIsDamaged) {
  Forger forger;
  const auto arrays = forger.classNamed("NSMutableArray"), sets = forger.classNamed("NSOrderedSet");
  const auto text = forger.text("hello"), wide = forger.add(forger.list.text(u"\u00FC"));
  const auto members =
      forger.instance(sets, {{"NS.object.1", forger.list.uid(wide)}, {"NS.object.0", forger.list.uid(text)}});
  const auto dictionary = forger.dictionary(forger.classNamed("NSDictionary"), {text, wide}, {members, text});
  const auto link = forger.instance(forger.classNamed("NSURL"), {{"NS.relative", forger.list.uid(text)}});
  const auto attributed = forger.instance(
      forger.classNamed("NSAttributedString"),
      {{"NSString", forger.list.uid(text)},
       {"NSAttributes", forger.list.uid(forger.row(arrays, {dictionary, dictionary}))},
       {"NSAttributeInfo",
        forger.list.uid(forger.add(forger.list.data(makeData(std::string_view("\1\0\4\1", 4))->bytes())))}});
  const auto node = forger.instance(forger.classNamed("Node"), {{"name", forger.list.uid(text)}});
  const auto binary = forger.finish(forger.row(arrays, {members, dictionary, link, attributed, node}));
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
  EXPECT_EQ(Node::alive, 0);
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
    EXPECT_TRUE(saysWhy(failureOf(data), "object 1 holds itself"));
  }
  // Its class is itself: harmless, and a class for nothing else.
  const std::string own = key("$classname", "<string>NSArray</string>");
  EXPECT_TRUE(isDecoded(xmlArchive({object(1, own + key("NS.objects", "<array/>"))})));
  EXPECT_FALSE(isDecoded(xmlArchive({object(1, own + key("NS.objects", references({2}))), object(1, own)})));
  EXPECT_FALSE(isDecoded(xmlArchive({object(2, ""), object(1, "")})));
}

}  // namespace
}  // namespace havrin
