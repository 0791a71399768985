// SPDX-License-Identifier: Apache-2.0
// JSON under lenient decoding, against a plain reading of the same text: both take the same documents, and keep the same
// elements of every array in them, as every type.
#include "plain_value.h"
#include <HavrinFoundation/platform/decoding/json_decoder.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

using plain::Value;

// RFC 8259, a production a function. Each takes what it reads off the front of `text_`.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  std::optional<Value> document() {
    auto read = value(0);
    skipWhiteSpace();
    return read && text_.empty() ? std::move(read) : std::nullopt;
  }

 private:
  static constexpr int kDeepest = 512;

  void skipWhiteSpace() {
    while (!text_.empty() && std::string_view(" \t\n\r").find(text_.front()) != std::string_view::npos) {
      text_.remove_prefix(1);
    }
  }
  bool take(std::string_view token) {
    if (text_.substr(0, token.size()) != token) return false;
    text_.remove_prefix(token.size());
    return true;
  }
  bool takeSeparator(std::string_view token) {
    skipWhiteSpace();
    return take(token);
  }

  std::optional<Value> value(int depth) {
    skipWhiteSpace();
    Value read;
    if (take("null")) return read;
    if (take("true") || take("false")) {
      read.kind = Value::Kind::boolean;
      read.boolean = text_.data()[-2] == 'u';
      return read;
    }
    if (text_.empty()) return std::nullopt;
    switch (text_.front()) {
      case '[':
        return array(depth + 1);
      case '{':
        return object(depth + 1);
      case '"': {
        auto characters = string();
        if (!characters) return std::nullopt;
        read.kind = Value::Kind::text;
        read.text = std::move(*characters);
        return read;
      }
      default:
        return number();
    }
  }

  std::optional<Value> array(int depth) {
    if (depth > kDeepest || !take("[")) return std::nullopt;
    Value read;
    read.kind = Value::Kind::array;
    if (takeSeparator("]")) return read;
    do {
      auto element = value(depth);
      if (!element) return std::nullopt;
      read.elements.push_back(std::move(*element));
    } while (takeSeparator(","));
    return takeSeparator("]") ? std::optional(std::move(read)) : std::nullopt;
  }

  std::optional<Value> object(int depth) {
    if (depth > kDeepest || !take("{")) return std::nullopt;
    Value read;
    read.kind = Value::Kind::object;
    if (takeSeparator("}")) return read;
    do {
      skipWhiteSpace();
      const auto key = string();
      if (!key || !takeSeparator(":")) return std::nullopt;
      auto entry = value(depth);
      if (!entry) return std::nullopt;
      if (std::find(read.keys.begin(), read.keys.end(), *key) != read.keys.end()) continue;
      read.keys.push_back(*key);
      read.elements.push_back(std::move(*entry));
    } while (takeSeparator(","));
    return takeSeparator("}") ? std::optional(std::move(read)) : std::nullopt;
  }

  std::size_t takeDigits() {
    std::size_t count = 0;
    while (!text_.empty() && text_.front() >= '0' && text_.front() <= '9') {
      text_.remove_prefix(1);
      ++count;
    }
    return count;
  }

  std::optional<Value> number() {
    const char* const begin = text_.data();
    take("-");
    if (!take("0") && takeDigits() == 0) return std::nullopt;
    if (take(".") && takeDigits() == 0) return std::nullopt;
    if (take("e") || take("E")) {
      if (!take("+")) take("-");
      if (takeDigits() == 0) return std::nullopt;
    }
    Value read;
    read.kind = Value::Kind::number;
    read.text = std::string(begin, text_.data());
    return read;
  }

  std::optional<unsigned> takeHex() {
    if (text_.size() < 4 || text_.substr(0, 4).find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos) {
      return std::nullopt;
    }
    const auto unit = static_cast<unsigned>(std::strtoul(std::string(text_.substr(0, 4)).c_str(), nullptr, 16));
    text_.remove_prefix(4);
    return unit;
  }

  bool escape(std::string& characters) {
    static constexpr std::string_view kLetters = "bfnrt\"\\/";
    static constexpr std::string_view kMeant = "\b\f\n\r\t\"\\/";
    if (!take("u")) {
      const std::size_t letter = text_.empty() ? std::string_view::npos : kLetters.find(text_.front());
      if (letter == std::string_view::npos) return false;
      characters += kMeant[letter];
      text_.remove_prefix(1);
      return true;
    }
    auto unit = takeHex();
    if (!unit || (*unit & 0xFC00) == 0xDC00) return false;
    unsigned scalar = *unit;
    if ((scalar & 0xFC00) == 0xD800) {
      if (!take("\\u")) return false;
      const auto low = takeHex();
      if (!low || (*low & 0xFC00) != 0xDC00) return false;
      scalar = 0x10000 + (scalar - 0xD800) * 0x400 + (*low - 0xDC00);
    }
    const int more = scalar < 0x80 ? 0 : scalar < 0x800 ? 1 : scalar < 0x10000 ? 2 : 3;
    static constexpr unsigned kLeads[] = {0x00, 0xC0, 0xE0, 0xF0};
    characters += static_cast<char>(kLeads[more] | scalar >> (6 * more));
    for (int at = more - 1; at >= 0; --at) characters += static_cast<char>(0x80 | (scalar >> (6 * at) & 0x3F));
    return true;
  }

  // One character of UTF-8 as table 3-7 of the Unicode standard has it.
  bool character(std::string& characters) {
    const auto byteAt = [&](std::size_t at) { return at < text_.size() ? static_cast<unsigned char>(text_[at]) : 0U; };
    const unsigned lead = byteAt(0);
    std::size_t size = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (size == 0 || lead < 0x20) return false;
    unsigned low = 0x80;
    unsigned high = 0xBF;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
    for (std::size_t at = 1; at < size; ++at) {
      if (byteAt(at) < low || byteAt(at) > high) return false;
      low = 0x80;
      high = 0xBF;
    }
    characters += text_.substr(0, size);
    text_.remove_prefix(size);
    return true;
  }

  std::optional<std::string> string() {
    if (!take("\"")) return std::nullopt;
    std::string characters;
    while (!take("\"")) {
      if (text_.empty() || !(take("\\") ? escape(characters) : character(characters))) return std::nullopt;
    }
    return characters;
  }

  std::string_view text_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string_view withoutMark = text.substr(text.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0);
  const auto expected = Reader(withoutMark).document();

  static havrin::JSONDecoder decoder;
  bool isRead = true;
  try {
    decoder.read(text, [&](havrin::Decoder& document) {
      plain::require(expected.has_value());
      plain::compare(document, *expected);
    });
  } catch (const havrin::DecodingError& error) {
    plain::require(error.kind() == havrin::DecodingError::Kind::dataCorrupted && error.path().empty());
    isRead = false;
  }
  plain::require(isRead == expected.has_value());
  return 0;
}
