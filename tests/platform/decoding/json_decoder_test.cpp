// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/decoding/json_decoder.h>

#include <cmath>
#include <cstring>
#include <map>
#include <sstream>

namespace {

using namespace havrin;

constexpr const char* kMismatch = "typeMismatch";
constexpr const char* kCorrupted = "dataCorrupted";
constexpr const char* kNoValue = "valueNotFound";

// One field, so that its value is read as a part of an object.
template <class T>
struct Holder {
  T value{};
  using Fields = FieldList<Field<"value", &Holder::value>>;
};

// The value in words, or the kind of the error: what a row of a table holds.
template <class T>
std::string outcome(std::string_view text) {
  const auto decoded = JSONDecoder().tryDecode<T>(text);
  const auto asField =
      JSONDecoder().tryDecode<Holder<T>>("{\"value\":" + std::string(text) + ", \"more\": [[], 0, 1]}");
  EXPECT_TRUE(decoded ? asField && asField->value == *decoded
                      : !asField && asField.error().kind() == decoded.error().kind());
  if (!decoded) return decoded.error().description().substr(0, decoded.error().description().find(' '));
  std::ostringstream stream;
  stream << std::boolalpha;
  if constexpr (sizeof(T) == 1 && !std::same_as<T, bool>) {
    stream << int{*decoded};
  } else {
    stream << *decoded;
  }
  return stream.str();
}

TEST(JSONDecoder, ReadsAScalarByTheRulesOfItsType) {
  // What 8 bits, 64 bits without and with a sign, and a double make of a number; everything else refuses it.
  for (const auto& [text, int8, uint64, int64, real, why] :
       Rows<const char*, const char*, const char*, const char*, const char*, const char*>{
           {"12.5E+1", "125", "125", "125", "125", "whole after its exponent"},
           {"1.5", kCorrupted, kCorrupted, kCorrupted, "1.5", "a fraction"},
           {"-1.0", "-1", kCorrupted, "-1", "-1", "below zero, whole"},
           {"-129", kCorrupted, kCorrupted, "-129", "-129", "one less than 8 bits hold"},
           {"128.0", kCorrupted, "128", "128", "128", "one more"},
           {"9007199254740991.0", kCorrupted, "9007199254740991", "9007199254740991", "9.0072e+15", "whole below 2^53"},
           {"9007199254740992.0", kCorrupted, kCorrupted, kCorrupted, "9.0072e+15", "2^53 as a real"},
           {"9223372036854775807", kCorrupted, "9223372036854775807", "9223372036854775807", "9.22337e+18", "2^63 - 1"},
           {"9223372036854775808", kCorrupted, "9223372036854775808", kCorrupted, "9.22337e+18", "2^63"},
           {"-9223372036854775808", kCorrupted, kCorrupted, "-9223372036854775808", "-9.22337e+18", "-2^63"},
           {"-9223372036854775809", kCorrupted, kCorrupted, kCorrupted, "-9.22337e+18", "one less"},
           {"18446744073709551615", kCorrupted, "18446744073709551615", kCorrupted, "1.84467e+19", "2^64 - 1"},
           {"18446744073709551616", kCorrupted, kCorrupted, kCorrupted, "1.84467e+19", "2^64"},
           {"-1e99999999999999999999", kCorrupted, kCorrupted, kCorrupted, kCorrupted, "far beyond"},
           {"-0.000001e-99999999999999999999", "0", "0", "0", "-0", "far too small"},
           {"0e999", "0", "0", "0", "0", "zero whatever the exponent"},
           {"true", kMismatch, kMismatch, kMismatch, kMismatch, "a boolean is not a number"},
           {"\"3\"", kMismatch, kMismatch, kMismatch, kMismatch, "text is not a number"},
           {"null", kNoValue, kNoValue, kNoValue, kNoValue, "null is not a value"},
           {"[]", kMismatch, kMismatch, kMismatch, kMismatch, "an array"},
           {" {} ", kMismatch, kMismatch, kMismatch, kMismatch, "an object"},
       }) {
    SCOPED_TRACE(std::string(text) + ": " + why);
    EXPECT_EQ(outcome<std::int8_t>(text), int8);
    EXPECT_EQ(outcome<std::uint64_t>(text), uint64);
    EXPECT_EQ(outcome<std::int64_t>(text), int64);
    EXPECT_EQ(outcome<double>(text), real);
  }
  for (const auto& [text, boolean, string] :
       Rows<const char*, const char*, const char*>{{"1", kMismatch, kMismatch},
                                                   {"true", "true", kMismatch},
                                                   {"\"3\"", kMismatch, "3"},
                                                   {"null", kNoValue, kNoValue},
                                                   {"[]", kMismatch, kMismatch}}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(outcome<bool>(text), boolean);
    EXPECT_EQ(outcome<std::string>(text), string);
  }
  EXPECT_EQ(outcome<std::int16_t>("32768"), kCorrupted);
  EXPECT_EQ(outcome<std::uint16_t>("65535"), "65535");
  EXPECT_EQ(outcome<std::int32_t>("2147483648"), kCorrupted);
  EXPECT_EQ(outcome<std::uint32_t>("4294967295"), "4294967295");
  EXPECT_EQ(outcome<std::uint8_t>("256"), kCorrupted);
  EXPECT_EQ(outcome<long long>("-7"), "-7");
  EXPECT_EQ(outcome<float>("1e39"), kCorrupted) << "beyond a float, not a double";
}

// The C library reads the same text to the same bits.
TEST(JSONDecoder, ReadsRealsToTheLastBit) {
  std::mt19937_64 random = seededGenerator();
  const auto digits = [&](int most) {
    std::string text;
    for (auto left = 1 + static_cast<int>(random() % static_cast<unsigned>(most)); left > 0; --left) {
      text += static_cast<char>('0' + random() % 10);
    }
    return text;
  };
  JSONDecoder decoder;
  for (int round = 0; round < 20'000; ++round) {
    std::string text = random() % 2 ? "-" : "";
    text += static_cast<char>('1' + random() % 9) + digits(random() % 8 ? 12 : 25);
    if (random() % 4) text += '.' + digits(random() % 8 ? 8 : 30);
    if (random() % 3 == 0) text += (random() % 2 ? "e-" : "E") + digits(2);
    if (random() % 2) text += std::string(20, ' ');  // a short number is read by another way if more bytes follow
    const auto asDouble = decoder.decode<double>(text);
    const double expected = std::strtod(text.c_str(), nullptr);
    ASSERT_EQ(std::memcmp(&asDouble, &expected, sizeof expected), 0) << text;
    const float narrow = std::strtof(text.c_str(), nullptr);
    const auto asFloat = decoder.tryDecode<float>(text);
    ASSERT_EQ(static_cast<bool>(asFloat), std::isfinite(narrow)) << text;
    ASSERT_TRUE(!asFloat || std::memcmp(&*asFloat, &narrow, sizeof narrow) == 0) << text;
  }
}

TEST(JSONDecoder, ResolvesEscapes) {
  for (const auto& [text, expected, why] : Rows<const char*, std::string, const char*>{
           {R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t", "one letter each"},
           {R"("\u0041\u00e9\u20AC")", "A\u00e9\u20ac", "one, two and three bytes, either case"},
           {R"("\ud800\udc00\uDBFF\uDFFF")", "\U00010000\U0010FFFF", "the first and the last surrogate pair"},
           {R"("a\u0000b")", std::string("a\0b", 3), "NUL"},
           {R"("\\u0041\\")", "\\u0041\\", "an escaped backslash begins no escape"},
           {R"("é€😀")", "é€😀", "nothing to resolve"},
           {"\"\x7F\"", "\x7F", "DEL needs no escape"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(JSONDecoder().decode<std::string>(text), expected);
    const auto asKey = "{ " + std::string(text) + " :1}";
    EXPECT_EQ((JSONDecoder().decode<std::map<std::string, int>>(asKey)), (std::map<std::string, int>{{expected, 1}}));
  }
}

TEST(JSONDecoder, RefusesAMalformedDocumentAsAWhole) {
  const auto expectRefused = [](std::string_view text) {
    SCOPED_TRACE(quotedForReading(text));
    const auto decoded = JSONDecoder().tryDecode<std::vector<std::optional<int>>>(text);
    ASSERT_FALSE(decoded);
    EXPECT_EQ(decoded.error().kind(), DecodingError::Kind::dataCorrupted);
    EXPECT_TRUE(decoded.error().path().empty());
    EXPECT_EQ(decoded.error().detail().substr(0, 4), "the ")
        << "the reason is the document's: " << decoded.error().what();
  };
  std::istringstream documents(R"(
      [ ] { } [1 [1, [1,] [,1] [1} {] [1]] [1]x {"a"} {"a":} {"a":1,} {"a"1} {a:1} {1:1} {"a":1"b":2} {,} {"a"::1}
      01 - -a +1 .5 1. 1.e1 1e 1e+ 0x10 1_000 1a --1 NaN Infinity -Infinity tru truex True nul nulll falsee
      'a' "a "a"b "a""b" ["a"1] /*c*/1 1//c "\x" "\u12" "\u12G4" "\ "\ud800" "\ude00" "\ud800\u0041" "\ud800x\udc00" ["\U0041"])");
  for (std::string text; documents >> text;) expectRefused(text);
  for (const char* text : {"", " \n\t", "1 2", "[1 2]", "[1\x01]", "[1\f]", "\"\n\"", "\"\x1f\"", "\"\xff\"",
                           "\"\xc0\xaf\"", "\"\xed\xa0\x80\"", "\"\xf4\x90\x80\x80\"", "\"\xe2\x82\"", "[\x80]",
                           "[1,\xc3\xa9]", "\xfe\xff", "\xEF\xBB\xBF", "[\xEF\xBB\xBF 1]"}) {
    expectRefused(text);
  }
  expectRefused(std::string_view("[1]\0", 4));
  expectRefused(std::string_view("[\0]", 3));
  EXPECT_EQ(JSONDecoder().tryDecode<int>("{\n  \"a\": [1,\n   oops]}").error().description(),
            "dataCorrupted at the top level: the document is not JSON: expected a value (line 3, byte 4)");
}

TEST(JSONDecoder, BoundsDepthAndSize) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  const auto isRead = [](std::string_view text) {
    return JSONDecoder().read(text, [](Decoder& document) { return document.unkeyedContainer().count(); });
  };
  EXPECT_EQ(isRead(nested(512)), 1u);
  EXPECT_THROW(isRead(nested(513)), DecodingError);
  EXPECT_THROW(isRead(std::string(100'000, '[')), DecodingError);
  JSONDecoder small;
  small.maximumSize = 5;
  EXPECT_EQ(small.decode<std::vector<int>>("[1,2]").size(), 2u);
  EXPECT_EQ(small.tryDecode<int>("[1,2] ").error().description(),
            "dataCorrupted at the top level: the document has 6 bytes; the maximum is 5");
}

// Against a map of the same pairs: small and large objects, asked in any order, with keys that repeat, that differ late,
// and that are written with escapes.
TEST(JSONDecoder, TakesTheFirstOfEqualKeys) {
  std::mt19937_64 random = seededGenerator();
  JSONDecoder decoder;  // one for all documents, which keeps nothing of the one before
  for (int round = 0; round < 300; ++round) {
    const auto size = static_cast<int>(round % 10 ? random() % 8 : random() % 200);
    const auto randomKey = [&] {
      constexpr const char* kStems[] = {"", "a", "b", "name", "game", "listeners", "a key of more than sixteen bytes "};
      return kStems[random() % std::size(kStems)] +
             (random() % 3 ? "" : std::to_string(random() % (static_cast<unsigned>(size) + 1)));
    };
    std::vector<std::string> keys;
    std::map<std::string, int> first;
    std::string text;
    for (int index = 0; index < size; ++index) {
      std::string key = randomKey();
      if (first.try_emplace(key, index).second) keys.push_back(key);
      if (!key.empty() && random() % 4 == 0) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(key[0]));
        key.replace(0, 1, escape);
      }
      text += (index ? ",\"" : "\"") + key + "\":" + std::to_string(index);
    }
    SCOPED_TRACE(text);
    decoder.read('{' + text + '}', [&](Decoder& document) {
      const auto container = document.container();
      for (int question = 0; question < 100; ++question) {
        const std::string key = question % 2 || keys.empty() ? randomKey() : keys[random() % keys.size()];
        const auto expected = first.find(key);
        ASSERT_EQ(container.decodeIfPresent<int>(key),
                  expected == first.end() ? std::nullopt : std::optional(expected->second))
            << key;
      }
      EXPECT_EQ(container.allKeys(), keys);
      EXPECT_EQ((document.singleValueContainer().decode<std::map<std::string, int>>()), first);
    });
  }
}

struct Envelope {
  int outer = 0;
  std::vector<int> inner;

  static Decoded<Envelope> fromDecoder(Decoder& decoder) {
    auto* const json = std::any_cast<JSONDecoder*>(decoder.userInfo().at("decoder"));
    auto container = decoder.tryContainer();
    if (!container) return container.error();
    auto text = container->tryDecode<std::string>("inner");
    auto inner = json->tryDecode<std::vector<int>>(text ? *text : "");
    auto outer = container->tryDecode<int>("outer");
    if (!inner || !outer) return inner ? outer.error() : inner.error();
    return Envelope{*outer, *inner};
  }
};

TEST(JSONDecoder, MayBeUsedFromInsideATypeThatItDecodes) {
  JSONDecoder decoder;
  decoder.userInfo["decoder"] = &decoder;
  const auto envelopes = decoder
                             .decode<std::map<std::string, std::vector<Envelope>>>(
                                 R"({"all":[{"inner":"[1,2,3]","outer":4},{"inner":"[5]","outer":6}]})")
                             .at("all");
  ASSERT_EQ(envelopes.size(), 2u);
  EXPECT_EQ(envelopes[0].inner, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(envelopes[1].outer, 6);
  EXPECT_THROW(static_cast<void>(decoder.decode<int>("[")), DecodingError);
  EXPECT_EQ(decoder.decode<int>("\xEF\xBB\xBF 8"), 8) << "usable after an error; a byte order mark is skipped";
}

}  // namespace
