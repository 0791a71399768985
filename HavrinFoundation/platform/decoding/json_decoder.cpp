#include <HavrinFoundation/platform/decoding/json_decoder.h>

#include <HavrinFoundation/platform/documents/json_tokens.h>

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace havrin::inline platform {
namespace {

using Token = JsonTokens::Token;

[[gnu::noinline]] void readEscaped(const JsonTokens& tokens, Token value, ScalarTarget& target) {
  target.putText(tokens.unescaped(value));
}

void readScalar(const JsonTokens& tokens, Token value, ScalarTarget& target) {
  switch (tokens.kindOf(value)) {
    case '"':
      return tokens.hasEscapes(value) ? readEscaped(tokens, value, target) : target.putText(tokens.insideOf(value));
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
      return target.putNumberText(tokens.textOf(value));
  }
}

DecodingError noContainer(const JsonTokens& tokens, Token value, std::string_view expected) {
  switch (tokens.kindOf(value)) {
    case '"':
      return DecodingError::typeMismatch(expected, Found::string, tokens.unescaped(value));
    case '{':
      return DecodingError::typeMismatch(expected, Found::object);
    case '[':
      return DecodingError::typeMismatch(expected, Found::array);
    case 't':
    case 'f':
      return DecodingError::typeMismatch(expected, Found::boolean, tokens.textOf(value));
    case 'n':
      return DecodingError::valueNotFound(expected);
    default:
      return DecodingError::typeMismatch(expected, Found::number, tokens.textOf(value));
  }
}

class JsonValue final : public ValueSource {
 public:
  JsonValue(const JsonTokens& tokens, Token value) : tokens_(&tokens), value_(value) {}

  bool isNull() const override { return tokens_->kindOf(value_) == 'n'; }
  void read(ScalarTarget& target) const override { readScalar(*tokens_, value_, target); }
  SourceBox<KeyedSource> keyed() const override;
  SourceBox<UnkeyedSource> unkeyed() const override;

 private:
  const JsonTokens* tokens_;
  Token value_;
};

// The outermost value stands under no key.
constexpr Token kNone = 0;

// The keys of an object in the order of their texts, each with the first value that stands under it.
struct KeyIndex {
  struct Row {
    std::string_view key;
    Token value;
  };

  KeyIndex(const JsonTokens& tokens, Token object) {
    const Token end = tokens.endOf(object);
    for (Token key = tokens.firstIn(object); key != end; key = tokens.next(tokens.valueOf(key), end)) {
      const bool isPlain = !tokens.hasEscapes(key);
      rows.push_back({isPlain ? tokens.insideOf(key) : unescaped.emplace_back(tokens.unescaped(key)),  //
                      tokens.valueOf(key)});
    }
    const auto byKey = [](const Row& left, const Row& right) { return left.key < right.key; };
    const auto haveOneKey = [](const Row& left, const Row& right) { return left.key == right.key; };
    std::stable_sort(rows.begin(), rows.end(), byKey);
    rows.erase(std::unique(rows.begin(), rows.end(), haveOneKey), rows.end());
  }

  Token find(std::string_view key) const {
    const auto before = [](const Row& row, std::string_view text) { return row.key < text; };
    const auto row = std::lower_bound(rows.begin(), rows.end(), key, before);
    return row != rows.end() && row->key == key ? row->value : kNone;
  }

  std::deque<std::string> unescaped;
  std::vector<Row> rows;
};

class JsonObject final : public KeyedSource {
 public:
  JsonObject(const JsonTokens& tokens, Token object)
      : tokens_(&tokens), object_(object), next_(tokens.firstIn(object)) {}

  std::vector<std::string> allKeys() const override {
    auto rows = index().rows;
    std::sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) { return left.value < right.value; });
    std::vector<std::string> keys;
    keys.reserve(rows.size());
    for (const auto& row : rows) keys.emplace_back(row.key);
    return keys;
  }

  SourceBox<ValueSource> find(std::string_view key) const override {
    const Token value = valueUnder(key);
    if (value == kNone) return {};
    return JsonValue(*tokens_, value);
  }

  bool read(std::string_view key, ScalarTarget& target) const override {
    const Token value = valueUnder(key);
    if (value == kNone) return false;
    readScalar(*tokens_, value, target);
    return true;
  }

 private:
  // Types ask for their keys in the order of the data, as a rule: the search goes on where the last one ended. It may do
  // so unless the key could already have passed, which a mask with one bit for each key passed rules out. Where it could,
  // the walk begins again, since of equal keys the first counts.
  Token valueUnder(std::string_view key) const {
    const std::uint64_t bit = maskBit(key);
    if ((passed_ & bit) != 0) return valueAnywhere(key);
    const Token end = tokens_->endOf(object_);
    while (next_ != end) {
      const Token at = next_;
      next_ = tokens_->next(tokens_->valueOf(at), end);
      if (tokens_->says(at, key)) {
        passed_ |= bit;
        return tokens_->valueOf(at);
      }
      passed_ |= tokens_->hasEscapes(at) ? ~std::uint64_t{0} : maskBit(tokens_->insideOf(at));
    }
    return kNone;
  }

  static std::uint64_t maskBit(std::string_view key) {
    const auto first = static_cast<unsigned char>(key.empty() ? '\0' : key.front());
    return std::uint64_t{1} << ((key.size() * 5 + first) % 64);
  }

  // An object that is walked over and over gets an index, so that asking for every key is never quadratic.
  [[gnu::noinline]] Token valueAnywhere(std::string_view key) const {
    constexpr std::size_t kStepsWithoutIndex = 400;
    if (steps_ > kStepsWithoutIndex) return index().find(key);
    const Token end = tokens_->endOf(object_);
    for (Token at = tokens_->firstIn(object_); at != end; at = tokens_->next(tokens_->valueOf(at), end), ++steps_) {
      if (tokens_->says(at, key)) return tokens_->valueOf(at);
    }
    return kNone;
  }

  const KeyIndex& index() const {
    if (index_ == nullptr) index_ = std::make_unique<const KeyIndex>(*tokens_, object_);
    return *index_;
  }

  const JsonTokens* tokens_;
  Token object_;
  mutable Token next_;
  mutable std::uint64_t passed_ = 0;
  mutable std::size_t steps_ = 0;
  mutable std::unique_ptr<const KeyIndex> index_;
};

class JsonArray final : public UnkeyedSource {
 public:
  JsonArray(const JsonTokens& tokens, Token array)
      : tokens_(&tokens), array_(array), at_(tokens.firstIn(array)), end_(tokens.endOf(array)) {}

  std::optional<std::size_t> count() const override { return tokens_->countOf(array_); }
  bool isAtEnd() const override { return at_ == end_; }
  std::size_t currentIndex() const override { return index_; }
  SourceBox<ValueSource> current() override { return JsonValue(*tokens_, at_); }
  Decoded<void> advance() override {
    move();
    return {};
  }
  void read(ScalarTarget& target) override {
    readScalar(*tokens_, at_, target);
    if (!target.failure()) move();
  }

 private:
  void move() {
    at_ = tokens_->next(at_, end_);
    ++index_;
  }

  const JsonTokens* tokens_;
  Token array_;
  Token at_;
  Token end_;
  std::size_t index_ = 0;
};

SourceBox<KeyedSource> JsonValue::keyed() const {
  if (tokens_->kindOf(value_) != '{') return noContainer(*tokens_, value_, "an object");
  return JsonObject(*tokens_, value_);
}

SourceBox<UnkeyedSource> JsonValue::unkeyed() const {
  if (tokens_->kindOf(value_) != '[') return noContainer(*tokens_, value_, "an array");
  return JsonArray(*tokens_, value_);
}

}  // namespace

struct JSONDecoder::Memory {
  JsonTokens tokens;
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
  if (auto outcome = memory_->tokens.read(text); !outcome) return std::move(outcome.failure());
  return JsonValue(memory_->tokens, Token{0});
}

}  // namespace havrin::inline platform
