// SPDX-License-Identifier: Apache-2.0
// The block operations that finish before they return. The asynchronous map: array_blocks_async_map_test.cpp.
#include "../objects.h"
#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/collections/set_blocks_messages.h>

using namespace havrin;

namespace {

thread_local int allocations = 0;

}  // namespace

// The linker sends every call of malloc and realloc in this program here.
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
void* __wrap_malloc(std::size_t size) {
  ++allocations;
  return __real_malloc(size);
}
void* __wrap_realloc(void* memory, std::size_t size) {
  ++allocations;
  return __real_realloc(memory, size);
}
}

namespace {

bool isVowel(NSString* letter) { return std::string("aeiou").find(text(letter)) != std::string::npos; }

// Has the two methods that a subclass must have.
class Word : public Object<Word, NSArray> {
 public:
  explicit Word(std::string letters) : letters_(std::move(letters)) {}
  std::uint64_t count() const override { return letters_.size(); }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return s(letters_.substr(index, 1)); }

 private:
  std::string letters_;
};

Strong<NSString> upperVowel(NSString* letter) {
  return isVowel(letter) ? s(std::string(1, static_cast<char>(text(letter)[0] - 32))) : nullptr;
}
Strong<NSObject> join(NSString* word, NSString* letter) { return s(text(word) + text(letter)); }

// Each override leaves a mark that the operation's result must show.
struct Marked : Object<Marked, Word> {
  Marked() : Object("abc") {}
  Strong<NSIndexSet> indexesOfObjectsPassingTest(Test) const override { return makeIndexSet({2}); }
  Strong<NSArray> objectsAtIndexes(const NSIndexSet* indexes) const override {
    return makeArray({s("chosen"), makeNumber(indexes->firstIndex())});
  }
  void enumerateObjectsUsingBlock(BlockView<void(NSObject*, std::uint64_t, bool&)> block) const override {
    bool stop = false;
    for (int i = 0; i < 5; ++i) block(s("seen"), 0, stop);
  }
  std::uint64_t indexOfObjectPassingTest(Test) const override { return 1; }
  Strong<NSArray> select(ElementPredicate predicate) {
    ++selections;
    return sendSuper<"select:">(*this, predicate);
  }
  using Members = List<Method<"select:", &Marked::select>>;
  int selections = 0;
};

}  // namespace

TEST(ArrayBlocks, FilterTransformFoldAndSearchInOrder) {
  const struct {
    std::string word;
    const char *vowels, *others, *mapped, *compacted, *folded, *first, *tested, *why;
  } rows[] = {
      {"", "()", "()", "()", "()", "nil", "nil", "", "empty: no block is called"},
      {"queue", "(u, e, u, e)", "(q)", "(<null>, U, E, U, E)", "(U, E, U, E)", "nilqueue", "u", "qu", "duplicates"},
      {"try", "()", "(t, r, y)", "(<null>, <null>, <null>)", "()", "niltry", "nil", "try", "nothing passes"},
  };
  for (const auto& row : rows) {
    const auto list = letters(row.word);
    const Strong<NSArray> arrays[] = {makeArray(list->elements()), list, list->snapshot(), make<Word>(row.word)};
    for (const auto& array : arrays) {
      SCOPED_TRACE(row.why + (" in a receiver of class " + std::string(classOf(*array).name())));
      std::string tested;
      const auto test = [&](NSString* letter) {
        tested += text(letter);
        return isVowel(letter);
      };
      const Strong<NSArray> vowels = send<"select:">(array, test);
      EXPECT_EQ(text(vowels), row.vowels);
      EXPECT_EQ(text(send<"reject:">(array, test)), row.others);
      EXPECT_EQ(std::exchange(tested, ""), row.word + row.word);
      EXPECT_EQ(text(send<"firstWhere:">(array, test)), row.first);
      EXPECT_EQ(tested, row.tested) << "nothing after the first match";
      const Strong<NSArray> mapped = send<"map:">(array, upperVowel);
      EXPECT_EQ(text(mapped), row.mapped);
      EXPECT_EQ(text(send<"compactMap:">(array, upperVowel)), row.compacted);
      EXPECT_EQ(text(send<"reduce:withBlock:">(array, nullptr, join)), row.folded);
      EXPECT_EQ(classOf(*vowels).name(), "NSArray") << "immutable, whatever the receiver is";
      EXPECT_EQ(classOf(*mapped).name(), "NSArray");
    }
  }
}

TEST(ArrayBlocks, UseTheOverridesOfTheReceiver) {
  const auto always = [](NSObject*) { return true; };
  const auto same = [](NSObject* object) { return Strong<NSObject>(object); };
  const auto marked = make<Marked>();
  EXPECT_EQ(text(send<"reject:">(marked, always)), "(chosen, 2)");
  EXPECT_EQ(marked->selections, 1) << "reject: sends select:";
  EXPECT_EQ(text(send<"map:">(marked, same)), "(seen, seen, seen, seen, seen)") << "more than the count said";
  EXPECT_EQ(text(send<"firstWhere:">(marked, always)), "b");
}

TEST(Blocks, AreRefusedWhereNullBeforeAnythingRuns) {
  const auto word = make<Word>("a");
  const std::function<void()> calls[] = {
      [&] { (void)send<"select:">(word, nullptr); },
      [&] { (void)send<"reject:">(word, nullptr); },
      [&] { (void)send<"map:">(word, nullptr); },
      [&] { (void)send<"compactMap:">(word, nullptr); },
      [&] { (void)send<"reduce:withBlock:">(word, nullptr, nullptr); },
      [&] { (void)send<"firstWhere:">(word, Block<bool(NSObject*)>()); },
      [&] { (void)send<"select:">(word, [](NSNumber&) { return true; }); },
      [&] { (void)send<"select:">(makeSet({}), nullptr); },
      [&] { (void)send<"reject:">(makeSet({}), nullptr); },
      [&] { (void)send<"map:">(makeSet({}), nullptr); },
      [&] { (void)send<"select:">(makeOrderedSet({}), nullptr); },
      [&] { (void)send<"compactMap:">(makeOrderedSet({}), nullptr); },
  };
  for (const auto& call : calls) EXPECT_EQ(nameOf(call), NSInvalidArgumentException);
}

TEST(ArrayBlocks, ThrowWhenABlockChangesTheReceiver) {
  const auto list = makeMutableArray({});
  const auto change = [&](NSString& letter) {
    list->removeAllObjects();
    EXPECT_EQ(text(&letter), "a") << "held while the block runs";
    return Strong<NSObject>();
  };
  const auto test = [&](NSString& letter) { return change(letter) != nullptr; };
  const std::function<void()> operations[] = {[&] { (void)send<"select:">(list, test); },
                                              [&] { (void)send<"map:">(list, change); },
                                              [&] { (void)send<"firstWhere:">(list, test); }};
  for (const auto& operation : operations) {
    list->addObjectsFromArray(letters("ab"));
    EXPECT_EQ(nameOf(operation), NSGenericException);
  }
}

TEST(ArrayBlocks, KeepNoReferenceAfterAnException) {
  const auto list = letters(std::string(100, 'a'));
  const Weak<NSObject> first = list->firstObject();
  int calls = 0;
  const auto fail = [&](NSObject* object) {
    if (++calls % 70 == 0) throw std::runtime_error("enough");
    return Strong<NSObject>(object);
  };
  EXPECT_THROW((void)send<"select:">(list, [&](NSObject* o) { return fail(o) != nullptr; }), std::runtime_error);
  EXPECT_THROW((void)send<"map:">(list, fail), std::runtime_error);
  list->removeAllObjects();
  EXPECT_FALSE(first.lock());
}

TEST(ArrayBlocks, AllocateTheResultOnce) {
  for (const std::size_t size : {2U, 31U, 1000U}) {
    const Strong<NSArray> array = makeArray(letters(std::string(size, 'a'))->elements());
    std::uint64_t calls = 0;
    const auto everySecond = [&](NSObject*) { return ++calls % 2 == 0; };
    const auto same = [](NSObject* object) { return Strong<NSObject>(object); };
    (void)send<"select:">(array, everySecond);
    (void)send<"map:">(array, same);
    allocations = 0;
    const auto mapped = send<"map:">(array, same);
    EXPECT_EQ(allocations, 1) << size;
    allocations = 0;
    const auto selected = send<"select:">(array, everySecond);
    EXPECT_EQ(allocations, size < 64 ? 1 : 2) << size << ": what a large one does not need is given back";
  }
}
