#include <HavrinFoundation/platform/coding/json_decoder.h>

#include <HavrinFoundation/platform/coding/json_tree.h>

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace havrin::inline platform {
namespace {

[[gnu::noinline]] void readEscaped(const JsonTree& tree, JsonTree::Node node, ScalarTarget& target) {
  target.putText(tree.unescaped(node));
}

void readScalar(const JsonTree& tree, JsonTree::Node node, ScalarTarget& target) {
  switch (tree.kindOf(node)) {
    case '"':
      return tree.hasEscapes(node) ? readEscaped(tree, node, target) : target.putText(tree.textOf(node));
    case '{':
      return target.refuse(Found::object);
    case '[':
      return target.refuse(Found::array);
    case 't':
      return target.putBoolean(true);
    case 'f':
      return target.putBoolean(false);
    case 'n':
      return target.putNull();
    default:
      return target.putNumberText(tree.textOf(node));
  }
}

DecodingError noContainer(const JsonTree& tree, JsonTree::Node node, std::string_view expected) {
  switch (tree.kindOf(node)) {
    case '"':
      return DecodingError::typeMismatch(expected, Found::string, tree.unescaped(node));
    case '{':
      return DecodingError::typeMismatch(expected, Found::object);
    case '[':
      return DecodingError::typeMismatch(expected, Found::array);
    case 't':
    case 'f':
      return DecodingError::typeMismatch(expected, Found::boolean, tree.textOf(node));
    case 'n':
      return DecodingError::valueNotFound(expected);
    default:
      return DecodingError::typeMismatch(expected, Found::number, tree.textOf(node));
  }
}

class JsonValue final : public ValueSource {
 public:
  JsonValue(const JsonTree& tree, JsonTree::Node node) : tree_(&tree), node_(node) {}

  bool isNull() const override { return tree_->kindOf(node_) == 'n'; }
  void read(ScalarTarget& target) const override { readScalar(*tree_, node_, target); }
  SourceBox<KeyedSource> keyed() const override;
  SourceBox<UnkeyedSource> unkeyed() const override;

 private:
  const JsonTree* tree_;
  JsonTree::Node node_;
};

// The outermost value stands under no key.
constexpr JsonTree::Node kNone = 0;

// The keys of an object in the order of their texts, each with the first value that stands under it.
struct KeyIndex {
  struct Row {
    std::string_view key;
    JsonTree::Node value;
  };

  KeyIndex(const JsonTree& tree, JsonTree::Node object) {
    rows.reserve(tree.countOf(object));
    for (auto key = JsonTree::firstIn(object); key != tree.endOf(object); key = tree.after(key + 1)) {
      const bool isPlain = !tree.hasEscapes(key);
      rows.push_back({isPlain ? tree.textOf(key) : unescaped.emplace_back(tree.unescaped(key)), key + 1});
    }
    const auto byKey = [](const Row& left, const Row& right) { return left.key < right.key; };
    const auto haveOneKey = [](const Row& left, const Row& right) { return left.key == right.key; };
    std::stable_sort(rows.begin(), rows.end(), byKey);
    rows.erase(std::unique(rows.begin(), rows.end(), haveOneKey), rows.end());
  }

  JsonTree::Node find(std::string_view key) const {
    const auto before = [](const Row& row, std::string_view text) { return row.key < text; };
    const auto row = std::lower_bound(rows.begin(), rows.end(), key, before);
    return row != rows.end() && row->key == key ? row->value : kNone;
  }

  std::deque<std::string> unescaped;
  std::vector<Row> rows;
};

class JsonObject final : public KeyedSource {
 public:
  JsonObject(const JsonTree& tree, JsonTree::Node node) : tree_(&tree), node_(node), next_(JsonTree::firstIn(node)) {}

  std::vector<std::string> allKeys() const override {
    auto rows = index().rows;
    std::sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) { return left.value < right.value; });
    std::vector<std::string> keys;
    keys.reserve(rows.size());
    for (const auto& row : rows) keys.emplace_back(row.key);
    return keys;
  }

  SourceBox<ValueSource> find(std::string_view key) const override {
    const JsonTree::Node value = valueOf(key);
    if (value == kNone) return {};
    return JsonValue(*tree_, value);
  }

  bool read(std::string_view key, ScalarTarget& target) const override {
    const JsonTree::Node value = valueOf(key);
    if (value == kNone) return false;
    readScalar(*tree_, value, target);
    return true;
  }

 private:
  // Types ask for their keys in the order of the data, as a rule: the search goes on where the last one ended. It may do
  // so unless the key could already have passed, which a mask with one bit for each key passed rules out. Where it could,
  // the walk begins again, since of equal keys the first counts; an object that is walked over and over gets an index, so
  // that asking for every key of an object is never quadratic.
  JsonTree::Node valueOf(std::string_view key) const {
    const JsonTree::Node end = tree_->endOf(node_);
    const std::uint64_t bit = maskBit(key);
    if ((passed_ & bit) != 0) return valueAnywhere(key, end);
    while (next_ != end) {
      const JsonTree::Node at = next_;
      next_ = tree_->after(at + 1);
      if (tree_->says(at, key)) {
        passed_ |= bit;
        return at + 1;
      }
      passed_ |= tree_->hasEscapes(at) ? ~std::uint64_t{0} : maskBit(tree_->textOf(at));
    }
    return kNone;
  }

  static std::uint64_t maskBit(std::string_view key) {
    const auto first = static_cast<unsigned char>(key.empty() ? '\0' : key.front());
    return std::uint64_t{1} << ((key.size() * 5 + first) % 64);
  }

  [[gnu::noinline]] JsonTree::Node valueAnywhere(std::string_view key, JsonTree::Node end) const {
    constexpr std::size_t kSmallObject = 32;
    constexpr std::size_t kWalks = 8;
    const std::size_t count = tree_->countOf(node_);
    if (count > kSmallObject && walks_++ > kWalks) return index().find(key);
    JsonTree::Node at = JsonTree::firstIn(node_);
    while (at != end && !tree_->says(at, key)) at = tree_->after(at + 1);
    return at != end ? at + 1 : kNone;
  }

  const KeyIndex& index() const {
    if (index_ == nullptr) index_ = std::make_unique<const KeyIndex>(*tree_, node_);
    return *index_;
  }

  const JsonTree* tree_;
  JsonTree::Node node_;
  mutable JsonTree::Node next_;
  mutable std::uint64_t passed_ = 0;
  mutable std::uint32_t walks_ = 0;
  mutable std::unique_ptr<const KeyIndex> index_;
};

class JsonArray final : public UnkeyedSource {
 public:
  JsonArray(const JsonTree& tree, JsonTree::Node node) : tree_(&tree), node_(node), at_(JsonTree::firstIn(node)) {}

  std::optional<std::size_t> count() const override { return tree_->countOf(node_); }
  bool isAtEnd() const override { return at_ == tree_->endOf(node_); }
  std::size_t currentIndex() const override { return index_; }
  SourceBox<ValueSource> current() override { return JsonValue(*tree_, at_); }
  Decoded<void> advance() override {
    move();
    return {};
  }
  void read(ScalarTarget& target) override {
    readScalar(*tree_, at_, target);
    if (!target.failure()) move();
  }

 private:
  void move() {
    at_ = tree_->after(at_);
    ++index_;
  }

  const JsonTree* tree_;
  JsonTree::Node node_;
  JsonTree::Node at_;
  std::size_t index_ = 0;
};

SourceBox<KeyedSource> JsonValue::keyed() const {
  if (tree_->kindOf(node_) != '{') return noContainer(*tree_, node_, "an object");
  return JsonObject(*tree_, node_);
}

SourceBox<UnkeyedSource> JsonValue::unkeyed() const {
  if (tree_->kindOf(node_) != '[') return noContainer(*tree_, node_, "an array");
  return JsonArray(*tree_, node_);
}

}  // namespace

struct JSONDecoder::Memory {
  JsonTree tree;
};

JSONDecoder::JSONDecoder() = default;
JSONDecoder::JSONDecoder(JSONDecoder&&) noexcept = default;
JSONDecoder& JSONDecoder::operator=(JSONDecoder&&) noexcept = default;
JSONDecoder::~JSONDecoder() = default;

JSONDecoder::Document::Document(JSONDecoder& decoder)
    : decoder_(decoder), memory_(decoder.memory_ ? std::move(decoder.memory_) : std::make_unique<Memory>()) {}

JSONDecoder::Document::~Document() { decoder_.memory_ = std::move(memory_); }

SourceBox<ValueSource> JSONDecoder::Document::open(std::string_view text) const {
  if (text.size() > decoder_.maximumSize) {
    return DecodingError::dataCorrupted("the document has " + std::to_string(text.size()) + " bytes, of which " +
                                        std::to_string(decoder_.maximumSize) + " are allowed");
  }
  if (auto outcome = memory_->tree.read(text); !outcome) return std::move(outcome.failure());
  return JsonValue(memory_->tree, JsonTree::Node{0});
}

}  // namespace havrin::inline platform
