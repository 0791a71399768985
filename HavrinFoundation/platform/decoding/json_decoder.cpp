// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/decoding/json_decoder.h>

#include <HavrinFoundation/platform/documents/json_tokens.h>

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace havrin {
inline namespace platform {
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
      if (!target.putShortNumber(tokens.beginOf(value), tokens.bytesFrom(value))) {
        target.putNumberText(tokens.textOf(value), tokens.bytesFrom(value));
      }
  }
}

// The top-level value, token 0, has no key, so it can represent "not found".
constexpr Token kNoToken = 0;

// The keys of an object, sorted, each with its first value.
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
    return row != rows.end() && row->key == key ? row->value : kNoToken;
  }

  std::deque<std::string> unescaped;
  std::vector<Row> rows;
};

// A JSON document as a source; its values are token numbers.
class JsonSource final : public DecodingSource {
 public:
  Decoded<void> open(std::string_view text) {
    indexes_.clear();
    auto tokens = buffer_.read(text);
    if (!tokens) return std::move(tokens.failure());
    tokens_ = *tokens;
    return {};
  }

  Found kind(Value value) const override {
    switch (tokens_.kindOf(token(value))) {
      case '"':
        return Found::string;
      case '{':
        return Found::object;
      case '[':
        return Found::array;
      case 't':
      case 'f':
        return Found::boolean;
      case 'n':
        return Found::null;
      default:
        return Found::number;
    }
  }
  void read(Value value, ScalarTarget& target) const override { readScalar(tokens_, token(value), target); }

  std::vector<std::string> allKeys(Value object) const override {
    auto rows = index(token(object)).rows;
    std::sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) { return left.value < right.value; });
    std::vector<std::string> keys;
    keys.reserve(rows.size());
    for (const auto& row : rows) keys.emplace_back(row.key);
    return keys;
  }

  Decoded<Value> find(ObjectCursor& cursor, std::string_view key) const override {
    const Token value = valueUnder(cursor, key);
    return value == kNoToken ? kNone : Value{value};
  }

  bool readKey(ObjectCursor& cursor, std::string_view key, ScalarTarget& target) const override {
    const Token value = valueUnder(cursor, key);
    if (value == kNoToken) return false;
    readScalar(tokens_, value, target);
    return true;
  }

  // Fields mostly come in the order of the document, with values of their own types. Those are read in a loop whose
  // state is local, which keeps it in registers; any other field is read as a key by itself.
  detail::ErrorHolder readFields(ObjectCursor& cursor, std::span<const Field> fields, const void* container,
                                 ErrorDetail detail) const override {
    const JsonTokens tokens = tokens_;
    const Token end = tokens.endOf(token(cursor.object));
    for (auto field = fields.begin(); field != fields.end(); ++field) {
      std::uint64_t passed = cursor.state[0];
      Token key = nextKey(cursor);
      for (; field != fields.end() && field->read == nullptr; ++field) {
        const std::uint64_t bit = maskBit(field->key);
        if ((passed & bit) != 0 || key == end || !tokens.says(key, field->key)) break;
        const Token value = JsonTokens::valueOf(key);
        if (!readUsual(tokens, value, *field)) break;
        passed |= bit;
        key = tokens.next(value, end);
      }
      cursor.state[0] = passed;
      cursor.state[1] = (cursor.state[1] & ~kPosition) | key;
      if (field == fields.end()) break;
      if (auto failure = detail::readField(*this, cursor, *field, container, detail)) return failure;
    }
    return {};
  }

  std::optional<std::size_t> count(Value array) const override { return tokens_.countOf(token(array)); }
  Value first(Value array) const override { return JsonTokens::firstIn(token(array)); }
  bool isAtEnd(const ArrayCursor& cursor) const override { return cursor.at == tokens_.endOf(token(cursor.array)); }
  Decoded<Value> current(const ArrayCursor& cursor) const override { return cursor.at; }
  Decoded<void> advance(ArrayCursor& cursor) const override {
    move(cursor);
    return {};
  }
  void readElement(ArrayCursor& cursor, ScalarTarget& target) const override {
    readScalar(tokens_, token(cursor.at), target);
    if (!target.failure()) move(cursor);
  }

 private:
  static Token token(Value value) { return static_cast<Token>(value); }

  void move(ArrayCursor& cursor) const {
    cursor.at = tokens_.next(token(cursor.at), tokens_.endOf(token(cursor.array)));
  }

  // Reads the value of a field that is a scalar, if it is a string without escapes, a boolean or a short number, as the
  // field is. Result: false, with nothing changed, if it is not.
  [[gnu::always_inline]] static bool readUsual(const JsonTokens& tokens, Token value, const Field& field) {
    if (field.type == ScalarTarget::Type::text) {
      if (!tokens.isPlainString(value)) return false;
      ScalarTarget(field.type, field.member).putText(tokens.insideOf(value));
      return true;
    }
    if (tokens.isContainer(value)) return false;
    const char* const begin = tokens.beginOf(value);
    if (field.type == ScalarTarget::Type::boolean) {
      if (*begin != 't' && *begin != 'f') return false;
      ScalarTarget(field.type, field.member).putBoolean(*begin == 't');
      return true;
    }
    return ScalarTarget(field.type, field.member).putShortNumber(begin, tokens.bytesFrom(value));
  }

  static Token nextKey(const ObjectCursor& cursor) {
    return cursor.state[0] == 0 ? JsonTokens::firstIn(token(cursor.object)) : static_cast<Token>(cursor.state[1]);
  }

  // Keys are mostly decoded in the order of the document, so the search continues where the last one ended. A mask with
  // one hash bit for each key passed shows whether the key may have been passed already; then the search starts over,
  // because of equal keys the first is used.
  Token valueUnder(ObjectCursor& cursor, std::string_view key) const {
    auto& [passed, position] = cursor.state;
    const std::uint64_t bit = maskBit(key);
    if ((passed & bit) != 0) return valueAnywhere(cursor, key);
    const Token object = token(cursor.object);
    const Token end = tokens_.endOf(object);
    Token next = nextKey(cursor);
    while (next != end) {
      const Token at = next;
      next = tokens_.next(JsonTokens::valueOf(at), end);
      if (tokens_.says(at, key)) {
        passed |= bit;
        position = (position & ~kPosition) | next;
        return JsonTokens::valueOf(at);
      }
      passed |= tokens_.hasEscapes(at) ? ~std::uint64_t{0} : maskBit(tokens_.insideOf(at));
    }
    position = (position & ~kPosition) | end;
    return kNoToken;
  }

  static constexpr std::uint64_t kPosition = 0xFFFF'FFFF;

  static std::uint64_t maskBit(std::string_view key) {
    const auto first = static_cast<unsigned char>(key.empty() ? '\0' : key.front());
    return std::uint64_t{1} << ((key.size() * 5 + first) % 64);
  }

  // Builds an index after many search steps in one object, so that decoding all of its keys is never quadratic.
  [[gnu::noinline]] Token valueAnywhere(ObjectCursor& cursor, std::string_view key) const {
    constexpr std::uint64_t kOneStep = std::uint64_t{1} << 32;  // counted above the position
    constexpr std::uint64_t kStepsWithoutIndex = 400 * kOneStep;
    const Token object = token(cursor.object);
    const Token end = tokens_.endOf(object);
    if (cursor.state[1] > kStepsWithoutIndex) return index(object).find(key);
    for (Token at = JsonTokens::firstIn(object); at != end; at = tokens_.next(JsonTokens::valueOf(at), end)) {
      cursor.state[1] += kOneStep;
      if (tokens_.says(at, key)) return JsonTokens::valueOf(at);
    }
    return kNoToken;
  }

  const KeyIndex& index(Token object) const {
    const auto found = indexes_.find(object);
    return found != indexes_.end() ? found->second : indexes_.try_emplace(object, tokens_, object).first->second;
  }

  JsonTokenBuffer buffer_;
  JsonTokens tokens_;
  mutable std::unordered_map<Token, KeyIndex> indexes_;
};

}  // namespace

struct JSONDecoder::Memory {
  JsonSource source;
};

JSONDecoder::JSONDecoder() = default;
JSONDecoder::JSONDecoder(JSONDecoder&&) noexcept = default;
JSONDecoder& JSONDecoder::operator=(JSONDecoder&&) noexcept = default;
JSONDecoder::~JSONDecoder() = default;

JSONDecoder::Document::Document(JSONDecoder& decoder)
    : decoder_(decoder), memory_(decoder.memory_ ? std::move(decoder.memory_) : std::make_unique<Memory>()) {}

JSONDecoder::Document::~Document() { decoder_.memory_ = std::move(memory_); }

Decoded<const DecodingSource*> JSONDecoder::Document::open(std::string_view text) const {
  if (text.size() > decoder_.maximumSize) {
    return DecodingError::dataCorrupted("the document has " + std::to_string(text.size()) + " bytes; the maximum is " +
                                        std::to_string(decoder_.maximumSize));
  }
  if (auto outcome = memory_->source.open(text); !outcome) return std::move(outcome.failure());
  return &memory_->source;
}

}  // namespace platform
}  // namespace havrin
