// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/json_tokens.h>

#include <HavrinFoundation/platform/documents/digit_words.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace havrin {
inline namespace platform {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isJsonDigit(char c) { return c >= '0' && c <= '9'; }

// The value of four hexadecimal digits. Empty when: there are not four.
std::optional<std::uint32_t> fourHexDigits(std::string_view text) {
  if (text.size() < 4) return std::nullopt;
  std::uint32_t value = 0;
  for (const char c : text.substr(0, 4)) {
    const char lower = static_cast<char>(c | 0x20);
    if (!isJsonDigit(c) && (lower < 'a' || lower > 'f')) return std::nullopt;
    value = value * 16 + static_cast<std::uint32_t>(isJsonDigit(c) ? c - '0' : lower - 'a' + 10);
  }
  return value;
}

// The character and the length, backslash included, of the escape whose backslash is in front of `text`.
// Empty when: the escape is invalid, or is half a surrogate pair.
struct Escape {
  std::uint32_t scalar;
  std::size_t length;
};
std::optional<Escape> readEscape(std::string_view text) {
  static constexpr std::string_view kLetters = "\"\\/bfnrt";
  static constexpr std::string_view kCharacters = "\"\\/\b\f\n\r\t";
  if (text.empty()) return std::nullopt;
  if (const std::size_t letter = kLetters.find(text.front()); letter != std::string_view::npos) {
    return Escape{static_cast<unsigned char>(kCharacters[letter]), 2};
  }
  if (text.front() != 'u') return std::nullopt;
  const auto unit = fourHexDigits(text.substr(1));
  if (!unit || (*unit >= 0xDC00 && *unit <= 0xDFFF)) return std::nullopt;
  if (*unit < 0xD800 || *unit > 0xDBFF) return Escape{*unit, 6};
  if (text.substr(5, 2) != "\\u") return std::nullopt;
  const auto low = fourHexDigits(text.substr(7));
  if (!low || *low < 0xDC00 || *low > 0xDFFF) return std::nullopt;
  return Escape{0x10000 + ((*unit - 0xD800) << 10) + (*low - 0xDC00), 12};
}

std::uint32_t nextBackslash(std::string_view text, std::size_t from) {
  return static_cast<std::uint32_t>(std::min(text.find('\\', from), text.size()));
}

// Checks the escapes from the backslash at `from` to `end`. Returns the first backslash at or after `end`.
// Empty when: an escape is invalid.
[[gnu::noinline]] std::optional<std::uint32_t> behindEscapes(std::string_view text, std::uint32_t from,
                                                             std::uint32_t end) {
  while (from < end) {
    const auto escape = readEscape(text.substr(from + 1, end - from - 1));
    if (!escape) return std::nullopt;
    from = nextBackslash(text, from + escape->length);
  }
  return from;
}

}  // namespace

// The second pass: checks the grammar over the tokens of the first pass and sets their flags.
class JsonReading {
 public:
  struct Outcome {
    const char* problem;  // null if the document is valid
    std::size_t offset;   // of the problem
  };
  // Everything is inlined here, which keeps the state of the reader in registers.
  [[gnu::flatten]] static Outcome outcome(std::string_view text, std::span<std::uint32_t> tokens) {
    JsonReading reading(text, tokens);
    return {reading.document() ? nullptr : reading.problem_, *reading.token_};
  }

 private:
  JsonReading(std::string_view text, std::span<std::uint32_t> tokens)
      : text_(text),
        tokens_(tokens.data()),
        token_(tokens.data()),
        end_(&tokens.back()),
        backslash_(nextBackslash(text, 0)) {}

  bool document() {
    for (;;) {
      const char first = peek();
      if (first == '{' || first == '[') {
        if (!open(first)) return false;
        if (peek() != closing_) {
          if (first == '{' && !key()) return false;
          continue;
        }
        close();
      } else if (!scalar(first)) {
        return false;
      }
      if (!afterValue()) return false;
      if (depth_ == 0) return token_ == end_ || wrong("unexpected text after the document");
    }
  }

  bool wrong(const char* problem) {
    problem_ = problem;
    return false;
  }

  // The character at the next token; NUL, which JSON never has outside strings, at the end of the text.
  char peek() const { return token_ == end_ ? '\0' : text_[*token_]; }

  bool open(char bracket) {
    if (depth_ == JsonTokens::kDeepestNesting) return wrong("nested deeper than 512 levels");
    const std::uint32_t mark = bracket == '{' ? JsonTokens::kContainer | JsonTokens::kObject : JsonTokens::kContainer;
    containers_[depth_] = static_cast<std::uint32_t>(token_ - tokens_) | mark;
    commas_[depth_++] = 0;
    closing_ = bracket == '{' ? '}' : ']';
    ++token_;
    return true;
  }

  void close() {
    const std::uint32_t container = containers_[--depth_];
    const auto end = static_cast<std::uint32_t>(token_ - tokens_);
    std::uint32_t* const bracket = tokens_ + (container & JsonTokens::kMask);
    *bracket = (container & ~JsonTokens::kMask) | end;
    // See countOf.
    if (commas_[depth_] != 0 && (bracket[1] & JsonTokens::kContainer) != 0) {
      tokens_[(bracket[1] & JsonTokens::kMask) + 1] = commas_[depth_] + 1;
    }
    ++token_;
    if (depth_ != 0) closing_ = (containers_[depth_ - 1] & JsonTokens::kObject) != 0 ? '}' : ']';
  }

  // Consumes tokens after a value up to the next value, or to the end of the document.
  bool afterValue() {
    while (depth_ != 0) {
      const char c = peek();
      if (c == ',') {
        ++token_;
        ++commas_[depth_ - 1];
        return closing_ != '}' || key();
      }
      if (c != closing_) return wrong(closing_ == '}' ? "expected ',' or '}'" : "expected ',' or ']'");
      close();
    }
    return true;
  }

  bool key() {
    if (peek() != '"') return wrong("expected a key in quotes");
    if (!string()) return false;
    if (peek() != ':') return wrong("expected ':'");
    ++token_;
    return true;
  }

  bool scalar(char first) {
    switch (first) {
      case '"':
        return string();
      case 't':
        return literal("true");
      case 'f':
        return literal("false");
      case 'n':
        return literal("null");
      default:
        return first == '-' || isJsonDigit(first) ? number() : wrong("expected a value");
    }
  }

  // The closing quote is the last character before the next token, white space skipped.
  bool string() {
    const std::uint32_t begin = *token_ + 1;
    std::uint32_t end = token_[1] - 1;
    if (text_[end] != '"' || end < begin) {
      while (end >= begin && JsonTokens::isWhiteSpace(text_[end])) --end;
      if (end < begin || text_[end] != '"') return wrong("unexpected text after a string");
    }
    if (backslash_ < end) {
      const auto behind = behindEscapes(text_, backslash_, end);
      if (!behind) return wrong("invalid escape in a string");
      backslash_ = *behind;
      *token_ |= JsonTokens::kEscapes;
    }
    ++token_;
    return true;
  }

  bool literal(std::string_view word) {
    if (text_.substr(*token_, word.size()) != word) return wrong("expected a value");
    return scalarEndsAt(*token_ + word.size());
  }

  bool number() {
    const char* const limit = text_.data() + text_.size();
    const char* at = text_.data() + *token_;
    const auto digits = [&] {
      const char* const first = at;
      while (limit - at >= 8) {
        const unsigned count = leadingDigits(loadWord(at));
        at += count;
        if (count != 8) return at != first;
      }
      while (at != limit && isJsonDigit(*at)) ++at;
      return at != first;
    };
    if (*at == '-') ++at;
    if (at != limit && *at == '0') {
      ++at;
    } else if (!digits()) {
      return wrong("invalid number");
    }
    if (at != limit && *at == '.' && (++at, !digits())) return wrong("invalid number");
    if (at != limit && (*at == 'e' || *at == 'E')) {
      if (++at != limit && (*at == '+' || *at == '-')) ++at;
      if (!digits()) return wrong("invalid number");
    }
    return scalarEndsAt(static_cast<std::size_t>(at - text_.data()));
  }

  bool scalarEndsAt(std::size_t end) {
    if (end != token_[1] && !JsonTokens::isWhiteSpace(text_[end])) return wrong("invalid literal or number");
    ++token_;
    return true;
  }

  const std::string_view text_;
  std::uint32_t* const tokens_;
  std::uint32_t* token_;
  std::uint32_t* const end_;
  std::uint32_t backslash_;  // the first one not yet passed, or the size of the text
  const char* problem_ = nullptr;
  char closing_ = '\0';
  std::size_t depth_ = 0;
  std::array<std::uint32_t, JsonTokens::kDeepestNesting> containers_;  // the open ones, with their flags
  std::array<std::uint32_t, JsonTokens::kDeepestNesting> commas_;      // seen so far in each
};

Decoded<JsonTokens> JsonTokenBuffer::read(std::string_view text) {
  if (text.size() > JsonTokens::kLargestText) return DecodingError::dataCorrupted("the document has 1 GiB or more");
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
  auto found = structure_.find(text);
  if (!found) return std::move(found.failure());
  const auto [problem, offset] = JsonReading::outcome(text, *found);
  if (problem == nullptr) {
    JsonTokens tokens;
    tokens.text_ = text;
    tokens.tokens_ = found->data();
    return tokens;
  }
  const std::string_view before = text.substr(0, offset);
  const auto line = 1 + std::count(before.begin(), before.end(), '\n');
  const std::size_t column = before.size() - (before.rfind('\n') + 1) + 1;
  return DecodingError::dataCorrupted("the document is not JSON: " + std::string(problem) + " (line " +
                                      std::to_string(line) + ", byte " + std::to_string(column) + ")");
}

std::string JsonTokens::unescaped(Token string) const {
  std::string_view rest = insideOf(string);
  std::string text;
  text.reserve(rest.size());
  for (;;) {
    const std::size_t backslash = rest.find('\\');
    text.append(rest.substr(0, backslash));
    if (backslash == std::string_view::npos) return text;
    const auto escape = readEscape(rest.substr(backslash + 1));
    appendScalar(text, escape->scalar);
    rest.remove_prefix(backslash + escape->length);
  }
}

std::size_t JsonTokens::countOf(Token array) const {
  const Token end = endOf(array);
  if (firstIn(array) == end) return 0;
  const Token comma = afterValue(firstIn(array));
  if (comma == end) return 1;
  if ((tokens_[firstIn(array)] & kContainer) != 0) return tokens_[comma];
  std::size_t count = 0;
  for (Token value = firstIn(array); value != end; value = next(value, end)) ++count;
  return count;
}

}  // namespace platform
}  // namespace havrin
