// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/collection_nesting.h>

#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/foundation/set.h>

#include <algorithm>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

namespace havrin {
inline namespace platform {
namespace {

constexpr std::uint32_t kDeepestRecursion = 64;
constinit thread_local std::uint32_t nesting [[gnu::tls_model("initial-exec")]] = 0;

// Whether `object` is compared as one of the layer's collections, which no class of the application overrides.
bool isOwnCollection(NSObject* object) {
  static ClassObject* const kClasses[] = {classObject<NSArray>(),      classObject<NSMutableArray>(),
                                          classObject<NSDictionary>(), classObject<NSMutableDictionary>(),
                                          classObject<NSSet>(),        classObject<NSMutableSet>(),
                                          classObject<NSOrderedSet>(), classObject<NSMutableOrderedSet>()};
  return std::ranges::find(kClasses, dispatchClass(object)->shown()) != std::end(kClasses);
}

// Two objects to compare. All pairs of one choice must be equal, and in each part of a collection one choice must hold:
// an element of an array has one choice, a member of a set one for each candidate.
struct Pair {
  Strong<NSObject> mine;
  Strong<NSObject> theirs;
  std::size_t part;
  std::size_t choice;
};

using Entry = std::pair<Strong<NSObject>, Strong<NSObject>>;  // a key and its value; a member and null

std::vector<Entry> entriesOf(const NSObject& collection) {
  std::vector<Entry> entries;
  if (const auto* const dictionary = cast<NSDictionary>(&collection)) {
    dictionary->forEach([&](NSObject* key, NSObject* value) { return entries.emplace_back(key, value), true; });
  } else if (const auto* const set = cast<NSSet>(&collection)) {
    for (NSObject* const member : each(set)) entries.emplace_back(member, nullptr);
  }
  return entries;
}

class Comparison {
 public:
  bool run(const NSObject& mine, const NSObject& theirs) {
    std::optional<bool> result = enter(mine, theirs);
    while (!frames_.empty()) {
      Frame& frame = frames_.back();
      if (result) {
        result = frame.take(*result);
        if (!result) continue;
        open_.erase({frame.mine, frame.theirs});
        frames_.pop_back();
      } else {
        const Pair& pair = frame.pairs[frame.at];
        result = isNested(pair.mine, pair.theirs) ? enter(*pair.mine, *pair.theirs)
                                                  : pair.mine == pair.theirs || pair.mine->isEqual(pair.theirs);
      }
    }
    return *result;
  }

 private:
  struct Frame {
    const NSObject* mine;
    const NSObject* theirs;
    std::vector<Pair> pairs = {};
    std::size_t at = 0;

    // Takes the result of the pair at `at`. Result: that of the whole, once it is known.
    std::optional<bool> take(bool equal) {
      const Pair& done = pairs[at++];
      const auto isSamePart = [&] { return at < pairs.size() && pairs[at].part == done.part; };
      const auto isSameChoice = [&] { return isSamePart() && pairs[at].choice == done.choice; };
      if (equal) {
        if (isSameChoice()) return std::nullopt;
        while (isSamePart()) ++at;
        return at == pairs.size() ? std::optional(true) : std::nullopt;
      }
      while (isSameChoice()) ++at;
      return isSamePart() ? std::nullopt : std::optional(false);
    }
  };

  static bool isNested(NSObject* mine, NSObject* theirs) {
    return mine != theirs && isOwnCollection(mine) && isOwnCollection(theirs);
  }

  // The result, or a new frame that will have it.
  std::optional<bool> enter(const NSObject& mine, const NSObject& theirs) {
    if (open_.contains({&mine, &theirs})) return true;
    Frame frame{&mine, &theirs};
    if (!gather(mine, theirs, frame.pairs)) return false;
    if (frame.pairs.empty()) return true;
    open_.insert({&mine, &theirs});
    frames_.push_back(std::move(frame));
    return std::nullopt;
  }

  // Compares what is not nested, and appends the rest. Result: false when the collections differ already.
  static bool gather(const NSObject& mine, const NSObject& theirs, std::vector<Pair>& pairs) {
    if (const auto* const set = cast<NSOrderedSet>(&mine)) {
      const auto* const other = cast<NSOrderedSet>(&theirs);
      return other && gather(*set->array(), *other->array(), pairs);
    }
    if (const auto* const array = cast<NSArray>(&mine)) {
      const auto* const other = cast<NSArray>(&theirs);
      return other && gatherElements(*array->snapshot(), *other->snapshot(), pairs);
    }
    return gatherEntries(mine, theirs, pairs);
  }

  static bool add(NSObject* mine, NSObject* theirs, std::size_t part, std::vector<Pair>& pairs) {
    if (!isNested(mine, theirs)) return mine == theirs || mine->isEqual(theirs);
    pairs.push_back({mine, theirs, part, 0});
    return true;
  }

  static bool gatherElements(const NSArray& mine, const NSArray& theirs, std::vector<Pair>& pairs) {
    if (mine.count() != theirs.count()) return false;
    for (std::size_t i = 0; i < mine.count(); ++i) {
      if (!add(mine.elements()[i], theirs.elements()[i], i, pairs)) return false;
    }
    return true;
  }

  static bool gatherEntries(const NSObject& mine, const NSObject& theirs, std::vector<Pair>& pairs) {
    const auto* const dictionary = cast<NSDictionary>(&theirs);
    const auto* const set = cast<NSSet>(&theirs);
    if (dictionary ? !isKind<NSDictionary>(&mine) : !set || !isKind<NSSet>(&mine)) return false;
    const std::vector<Entry> entries = entriesOf(mine);
    const std::vector<Entry> others = entriesOf(theirs);
    if (entries.size() != others.size()) return false;
    std::unordered_multimap<std::uint64_t, const Entry*> nested;
    for (const Entry& other : others) {
      if (isOwnCollection(other.first)) nested.emplace(other.first->hash(), &other);
    }
    for (std::size_t part = 0; part < entries.size(); ++part) {
      const auto& [key, value] = entries[part];
      if (!isOwnCollection(key)) {
        const Strong<NSObject> found = dictionary ? dictionary->objectForKey(key) : set->member(key);
        if (!found || (dictionary && !add(value, found, part, pairs))) return false;
        continue;
      }
      auto [candidate, end] = nested.equal_range(key->hash());
      if (candidate == end) return false;
      for (std::size_t choice = 0; candidate != end; ++candidate, ++choice) {
        pairs.push_back({key, candidate->second->first, part, choice});
        if (dictionary) pairs.push_back({value, candidate->second->second, part, choice});
      }
    }
    return true;
  }

  std::vector<Frame> frames_;
  std::set<std::pair<const NSObject*, const NSObject*>> open_;
};

}  // namespace

CollectionDepth::CollectionDepth() noexcept { ++nesting; }
CollectionDepth::~CollectionDepth() { --nesting; }
bool CollectionDepth::isTooDeep() const noexcept { return nesting > kDeepestRecursion; }

bool equalCollections(const NSObject& mine, const NSObject& theirs) { return Comparison().run(mine, theirs); }

}  // namespace platform
}  // namespace havrin
