// SPDX-License-Identifier: Apache-2.0
// Objects of every class, made, nested, shared and changed as the input says, written and read back: they come back as
// they were, shared where they were shared, or the archiver reports why not. What it writes can be read.
#include "archived_node.h"

#include <bit>
#include <span>
#include <string>
#include <unordered_map>

using namespace havrin;
using fuzz::Node;
using fuzz::require;

namespace {

class Input {
 public:
  Input(const std::uint8_t* bytes, std::size_t size) : rest_(bytes, size) {}
  [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }
  std::uint8_t byte() {
    if (rest_.empty()) return 0;
    const std::uint8_t first = rest_.front();
    rest_ = rest_.subspan(1);
    return first;
  }
  std::uint64_t number() {
    std::uint64_t value = 0;
    for (int i = 0; i < 8; ++i) value = value << 8 | byte();
    return value;
  }
  std::span<const std::uint8_t> bytes() {
    const auto taken = rest_.first(std::min<std::size_t>(byte() % 32, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

 private:
  std::span<const std::uint8_t> rest_;
};

// Makes objects. Only what never changes is found by equality: a mutable object would be lost, or walked in circles.
class Graph {
 public:
  Graph(const std::uint8_t* bytes, std::size_t size) : input_(bytes, size) {
    for (int steps = 0; !input_.isAtEnd() && steps < 300; ++steps) step();
  }
  ~Graph() {
    for (const Strong<NSObject>& object : all_) {  // ends the cycles
      if (auto* array = cast<NSMutableArray>(object.get())) array->removeAllObjects();
      if (auto* dictionary = cast<NSMutableDictionary>(object.get())) dictionary->removeAllObjects();
    }
  }
  Graph(const Graph&) = delete;
  Graph& operator=(const Graph&) = delete;

  [[nodiscard]] NSObject* root() const { return all_.empty() ? nullptr : all_.back().get(); }

 private:
  void step() {
    const unsigned what = input_.byte();
    switch (what % 5) {
      case 0:
        return keep(scalar(input_.byte()));
      case 1:
        return keep(unchanging(input_.byte()));
      case 2:
        return add(collection(input_.byte()));
      case 3:
        return change();
      default:
        return wrap(what / 5);
    }
  }

  void add(Strong<NSObject> object) { all_.push_back(std::move(object)); }
  void keep(Strong<NSObject> object) {
    unchanging_.push_back(object);
    add(std::move(object));
  }
  NSObject* any() { return all_.empty() ? NSNull::null() : all_[input_.byte() % all_.size()].get(); }
  NSObject* fixed() {
    return unchanging_.empty() ? NSNull::null() : unchanging_[input_.byte() % unchanging_.size()].get();
  }
  std::vector<NSObject*> several(NSObject* (Graph::*one)()) {
    std::vector<NSObject*> row(input_.byte() % 12);
    for (NSObject*& object : row) object = (this->*one)();
    return row;
  }
  std::vector<NSDictionary::KeyAndValue> entries(NSObject* (Graph::*one)()) {
    std::vector<NSDictionary::KeyAndValue> row;
    for (NSObject* const key : several(&Graph::fixed)) {
      if (!isKind<Node>(key)) row.emplace_back(key, (this->*one)());
    }
    return row;
  }

  std::u16string units() {
    std::u16string units;
    for (const std::uint8_t byte : input_.bytes())
      units += static_cast<char16_t>(byte < 0xC0 ? byte : byte << 8 | byte);
    return units;
  }

  Strong<NSObject> scalar(unsigned which) {
    switch (which % 11) {
      case 0:
        return makeString(units());
      case 1:
        return makeNumber(input_.byte() % 2 == 0);
      case 2:
        return makeNumber(static_cast<std::int64_t>(input_.number()));
      case 3:
        return makeNumber(input_.number());
      case 4:
        return makeNumber(std::bit_cast<double>(input_.number()));
      case 5:
        return NSNull::null();
      case 6:
        return makeData(std::as_bytes(input_.bytes()));
      case 7:
        return make<NSDate>(Date::fromTimeIntervalSinceReferenceDate(static_cast<double>(input_.number())));
      case 8:
        return make<NSUUID>(UUID({input_.byte(), input_.byte()}));
      case 9:
        return link();
      default:
        return node();
    }
  }

  Strong<NSObject> link() {
    const std::string text = utf8(*makeString(units()));
    const NSURL* const base = cast<NSURL>(fixed());
    auto url = base ? URL::fromString(text, base->value()) : URL::fromString(text);
    return make<NSURL>(url ? *std::move(url) : URL::fromUncheckedText(text));
  }

  Strong<NSObject> node() {
    auto made = make<Node>();
    made->narrow = static_cast<std::int32_t>(input_.byte() << 24);
    made->real = std::bit_cast<double>(input_.number());
    made->small = static_cast<float>(input_.byte());
    made->flag = input_.byte() % 2 == 0;
    const auto bytes = std::as_bytes(input_.bytes());
    made->bytes.assign(bytes.begin(), bytes.end());
    made->first = any();
    return made;
  }

  Strong<NSObject> unchanging(unsigned which) {
    switch (which % 5) {
      case 0:
        return makeArray(several(&Graph::fixed));
      case 1:
        return make<NSSet>(std::span<NSObject* const>(several(&Graph::fixed)));
      case 2:
        return make<NSOrderedSet>(std::span<NSObject* const>(several(&Graph::fixed)));
      case 3:
        return make<NSDictionary>(std::span<const NSDictionary::KeyAndValue>(entries(&Graph::fixed)));
      default:
        return attributedText()->copy();
    }
  }

  Strong<NSMutableAttributedString> attributedText() {
    auto text = make<NSMutableAttributedString>(makeString(units()));
    for (unsigned runs = input_.byte() % 4; runs > 0 && text->length() > 0; --runs) {
      const std::uint64_t from = input_.byte() % text->length();
      text->setAttributes(cast<NSDictionary>(fixed()), {from, 1 + input_.byte() % (text->length() - from)});
    }
    return text;
  }

  Strong<NSObject> collection(unsigned which) {
    switch (which % 8) {
      case 0:
        return makeArray(several(&Graph::any));
      case 1:
        return makeArray(several(&Graph::any))->mutableCopy();
      case 2:
        return make<NSDictionary>(std::span<const NSDictionary::KeyAndValue>(entries(&Graph::any)));
      case 3:
        return make<NSMutableDictionary>(std::span<const NSDictionary::KeyAndValue>(entries(&Graph::any)));
      case 4:
        return make<NSMutableSet>(std::span<NSObject* const>(several(&Graph::fixed)));
      case 5:
        return makeOrderedSet({fixed(), fixed()})->mutableCopy();
      case 6:
        return attributedText();
      default:
        return which % 16 == 7 ? Strong<NSObject>(make<NSMutableString>(units()))
                               : make<NSMutableData>(std::as_bytes(input_.bytes()));
    }
  }

  // Changes a mutable object; cycles come about.
  void change() {
    NSObject* const object = any();
    if (auto* array = cast<NSMutableArray>(object)) {
      array->addObject(any());
    } else if (auto* dictionary = cast<NSMutableDictionary>(object)) {
      NSObject* const key = fixed();
      if (!isKind<Node>(key)) dictionary->setObject(any(), key);
    } else if (auto* set = cast<NSMutableSet>(object)) {
      set->addObject(fixed());
    } else if (auto* ordered = cast<NSMutableOrderedSet>(object)) {
      ordered->insertObject(fixed(), 0);
    } else if (auto* string = cast<NSMutableString>(object)) {
      string->append(units());
    } else if (auto* one = cast<Node>(object)) {
      one->second = any();
    } else {
      add(object);
    }
  }

  // Arrays in arrays, which hold the one inside once or several times.
  void wrap(unsigned depth) {
    const unsigned times = 1 + input_.byte() % 3;
    Strong<NSObject> inside = any();
    for (unsigned i = 0; i < depth * times; ++i) inside = makeArray(std::vector<NSObject*>(times, inside));
    add(inside);
  }

  Input input_;
  std::vector<Strong<NSObject>> all_;
  std::vector<Strong<NSObject>> unchanging_;
};

// Walks a graph in the archiver's order.
class Survey {
 public:
  void visit(NSObject* object, std::size_t depth = 1) {
    if (!object || holdsItself_) return;
    deepest_ = std::max(deepest_, depth);
    if (deepest_ > 2 * NSKeyedUnarchiver::kDeepestNesting) return;
    const auto [found, isNew] = known_.try_emplace(object);
    Extent& extent = found->second;  // stays where it is
    if (!isNew) {
      holdsItself_ |= extent.isOpen && !isKind<Node>(object);
      return;
    }
    const std::uint64_t times = isKind<NSAttributedString>(object) ? 2 : 1;  // runs count their attributes, too
    extent.isOpen = true;
    extent.weight += textLength(*object);
    visitParts(*object, [&](NSObject* part) {
      visit(part, depth + 1);
      if (!part) return;
      const Extent& inner = known_[part];
      extent.height = std::max(extent.height, inner.height + 1);
      extent.parts = std::min(extent.parts + inner.parts, kTooMany);
      extent.weight = std::min(extent.weight + times * inner.weight, kTooMany);
    });
    extent.isOpen = false;
    if (isKind<Node>(object)) extent.parts = extent.weight = 1;
    highest_ = std::max(highest_, extent.height);
    mostParts_ = std::max(mostParts_, extent.parts);
    mostWeight_ = std::max(mostWeight_, extent.weight);
  }

  /// Whether there may be reason to refuse the graph, with the limits taken narrowly.
  [[nodiscard]] bool mayBeRefused() const {
    constexpr std::size_t kDeep = NSKeyedUnarchiver::kDeepestNesting - 4;
    return holdsItself_ || deepest_ > kDeep || highest_ > kDeep ||
           mostWeight_ > NSKeyedUnarchiver::kLargestExpansion / 4;
  }
  [[nodiscard]] bool mustBeRefused() const {
    return holdsItself_ || deepest_ > NSKeyedUnarchiver::kDeepestNesting + 2 || mostParts_ == kTooMany;
  }

  template <class Visit>
  static void visitParts(const NSObject& object, Visit visit) {
    if (const auto* array = cast<NSArray>(&object)) {
      for (NSObject* part : each(array)) visit(part);
    } else if (const auto* set = cast<NSSet>(&object)) {
      for (NSObject* part : each(set->allObjects())) visit(part);
    } else if (const auto* ordered = cast<NSOrderedSet>(&object)) {
      for (NSObject* part : each(ordered->array())) visit(part);
    } else if (const auto* dictionary = cast<NSDictionary>(&object)) {
      for (NSObject* part : each(dictionary)) visit(part);
      for (NSObject* part : each(dictionary->allValues())) visit(part);
    } else if (const auto* text = cast<NSAttributedString>(&object)) {
      for (std::uint64_t at = 0; at < text->length();) {
        const auto run = text->attributesAtIndex(at);
        visit(run.attributes);
        at = run.range.location + run.range.length;
      }
    } else if (const auto* node = cast<Node>(&object)) {
      visit(node->first);
      visit(node->second);
    }
  }

 private:
  static std::uint64_t textLength(const NSObject& object) {
    if (const auto* string = cast<NSString>(&object)) return string->length();
    if (const auto* data = cast<NSData>(&object)) return data->length();
    if (const auto* link = cast<NSURL>(&object)) return 2 * link->absoluteString()->length();
    const auto* text = cast<NSAttributedString>(&object);
    return text ? 2 * text->length() : 0;
  }

  static constexpr std::uint64_t kTooMany = 4 * NSKeyedUnarchiver::kLargestExpansion;
  struct Extent {
    std::uint64_t parts = 1;   // at the least
    std::uint64_t weight = 4;  // at the most
    std::size_t height = 0;
    bool isOpen = false;
  };
  std::unordered_map<const NSObject*, Extent> known_;
  bool holdsItself_ = false;
  std::size_t deepest_ = 0;
  std::size_t highest_ = 0;
  std::uint64_t mostParts_ = 0;
  std::uint64_t mostWeight_ = 0;
};

// Two graphs side by side: the same classes and values, and parts of one shared where those of the other are.
class Comparison {
 public:
  void requireSame(const NSObject* one, const NSObject* other) {
    require(!one == !other);
    if (!one) return;
    require(classOf(*one) == classOf(*other));
    const auto [found, isNew] = others_.try_emplace(one, other);
    require(found->second == other);
    if (!isNew) return;
    std::vector<const NSObject*> theirs;
    std::size_t next = 0;
    Survey::visitParts(*other, [&](NSObject* part) { theirs.push_back(part); });
    Survey::visitParts(*one, [&](NSObject* part) {
      require(next < theirs.size());
      requireSame(part, theirs[next++]);
    });
    require(next == theirs.size());
    if (const auto* node = cast<Node>(one)) return requireSameValues(*node, *cast<Node>(other));
    if (next > 0) return;
    const auto* date = cast<NSDate>(one);
    require(one->isEqual(other) ||
            (date && date->timeIntervalSinceReferenceDate() != date->timeIntervalSinceReferenceDate()));
    if (const auto* number = cast<NSNumber>(one)) {
      const bool isReal = number->kind() == NSNumber::Kind::real;
      require(isReal == (cast<NSNumber>(other)->kind() == NSNumber::Kind::real));
    }
  }

 private:
  static void requireSameValues(const Node& one, const Node& other) {
    require(one.manner == other.manner && one.narrow == other.narrow && one.flag == other.flag);
    require(std::bit_cast<std::uint64_t>(one.real) == std::bit_cast<std::uint64_t>(other.real));
    require(one.small == other.small && one.bytes == other.bytes);
  }

  std::unordered_map<const NSObject*, const NSObject*> others_;
};

void requireReason(const NSError& why) {
  require(why.code() == NSCoderInvalidValueError);
  const std::string text = utf8(*why.description());
  require(text.find("contains itself") != std::string::npos || text.find("nested deeper") != std::string::npos ||
          text.find("too much") != std::string::npos || text.find("beyond the size limit") != std::string::npos);
}

void writeAndRead(NSObject* root) {
  Survey survey;
  survey.visit(root);
  Strong<NSError> why;
  const auto written = NSKeyedArchiver::archivedDataWithRootObject(root, true, &why);
  require(!written == static_cast<bool>(why));
  if (!written) {
    require(survey.mayBeRefused());
    return requireReason(*why);
  }
  require(!survey.mustBeRefused());
  const auto read = NSKeyedUnarchiver::unarchivedObjectOfClasses(fuzz::everyClass(), written, &why);
  require(read && !why);
  Comparison().requireSame(root, read);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  {
    const Graph graph(data, size);
    if (graph.root()) writeAndRead(graph.root());
    Node::letGo();
  }
  Node::letGo();
  require(Node::areGone());
  return 0;
}
