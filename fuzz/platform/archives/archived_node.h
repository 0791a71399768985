// SPDX-License-Identifier: Apache-2.0
// An application's class as archives meet it, with a field of each kind, and what is expected of archives of it.
#pragma once

#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/platform/foundation/ns_url.h>
#include <HavrinFoundation/platform/foundation/ns_uuid.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <unordered_set>
#include <vector>

namespace havrin::fuzz {

inline void require(bool law) {
  if (!law) std::abort();
}

class Node;

/// Every class of the layer that archives hold, and Node.
inline const NSSet* everyClass();

/// Holds any object, itself included, so callers break the cycles with Node::letGo().
class Node : public Object<Node, NSObject> {
 public:
  /// What a node does while it is read.
  enum Manner : std::int64_t { becomesItself, becomesAnother, becomesNull, refuses, endsDecoding, kManners };

  Strong<NSObject> first;
  Strong<NSObject> second;
  std::int64_t manner = becomesItself;
  std::int32_t narrow = 0;
  double real = 0;
  float small = 0;
  bool flag = false;
  std::vector<std::byte> bytes;

  Node() { living().insert(this); }
  ~Node() override { living().erase(this); }

  void encodeWithCoder(NSCoder* coder) const {
    coder->encodeObject(first, "first");
    coder->encodeInteger(manner, "manner");
    coder->encodeInteger(narrow, "$narrow");
    coder->encodeDouble(real, "real");
    coder->encodeDouble(small, "small");
    coder->encodeBool(flag, "flag");
    coder->encodeBytes(bytes, "bytes");
    coder->encodeObject(second, "second");
  }

  Strong<NSObject> initWithCoder(NSCoder* coder) {
    first = objectOf(*coder, "first");
    manner = coder->decodeIntegerForKey("manner");
    narrow = coder->decodeInt32ForKey("$narrow");
    real = coder->decodeDoubleForKey("real");
    small = coder->decodeFloatForKey("small");
    flag = coder->containsValueForKey("flag") && coder->decodeBoolForKey("flag");
    const auto read = coder->decodeBytesForKey("bytes");
    bytes.assign(read.begin(), read.end());
    if (manner == endsDecoding) static_cast<NSKeyedUnarchiver*>(coder)->finishDecoding();
    second = objectOf(*coder, "second");
    if (manner == becomesNull) return nullptr;
    if (manner == refuses) coder->failWithError(makeCodingError(NSCoderInvalidValueError, "a node that refuses"));
    return manner == becomesAnother ? another() : Strong<Node>(this);
  }

  /// Ends the cycles that nodes are part of; then there must be none.
  static void letGo() {
    const std::vector<Strong<Node>> all(living().begin(), living().end());
    for (const Strong<Node>& node : all) node->first = node->second = nullptr;
  }
  static bool areGone() { return living().empty(); }

  using Protocols = List<NSSecureCoding>;
  using Members =
      List<Method<"encodeWithCoder:", &Node::encodeWithCoder>, Method<"initWithCoder:", &Node::initWithCoder>>;

 private:
  static std::unordered_set<Node*>& living() {
    static std::unordered_set<Node*> nodes;
    return nodes;
  }

  static Strong<NSObject> objectOf(NSCoder& coder, std::string_view key) {
    return coder.requiresSecureCoding() ? coder.decodeObjectOfClasses(everyClass(), key)
                                        : coder.decodeObjectForKey(key);
  }

  Strong<Node> another() {
    auto other = make<Node>();
    other->first = std::move(first);
    other->second = std::move(second);
    other->manner = manner;
    other->narrow = narrow;
    other->real = real;
    other->small = small;
    other->flag = flag;
    other->bytes = bytes;
    manner = becomesItself;
    return other;
  }
};

inline const NSSet* everyClass() {
  static const Strong<NSSet> all =
      makeSet({classOf<NSString>(), classOf<NSNumber>(), classOf<NSNull>(), classOf<NSData>(), classOf<NSDate>(),
               classOf<NSUUID>(), classOf<NSURL>(), classOf<NSArray>(), classOf<NSDictionary>(), classOf<NSSet>(),
               classOf<NSOrderedSet>(), classOf<NSAttributedString>(), classOf<Node>()});
  return all;
}

/// Archives know it as "Node".
inline const ArchivedClass<Node> kArchivedNode("Node");

}  // namespace havrin::fuzz
