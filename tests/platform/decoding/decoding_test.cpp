// SPDX-License-Identifier: Apache-2.0
#include "value_decoder.h"
#include <HavrinFoundation/platform/decoding/decoding.h>

#include <new>
#include <unordered_map>

namespace {

using namespace havrin;
using namespace value_decoder;

struct Song {
  std::string title;
  std::optional<int> seconds;

  using Fields = FieldList<Field<"title", &Song::title>, Field<"seconds", &Song::seconds>>;
};

// Every kind of member a list of fields can fill.
struct Station {
  std::int64_t identifier = 0;
  std::vector<std::string> tags;
  std::map<std::string, double> shares;
  std::optional<Song> song;
  std::vector<Song> history;

  using Fields =
      FieldList<Field<"identifier", &Station::identifier>, Field<"tags", &Station::tags>,
                Field<"shares", &Station::shares>, Field<"song", &Station::song>, Field<"history", &Station::history>>;
};

// By hand, with errors as values; a list of fields with a check behind it.
struct Level {
  int percent = 0;

  using Fields = FieldList<Field<"percent", &Level::percent>>;
  static Decoded<Level> fromDecoder(Decoder& decoder) {
    auto level = decodeFields<Level>(decoder);
    if (level && level->percent > 100) return DecodingError::dataCorrupted("more than everything");
    return level;
  }
};

// By hand, with errors thrown; no default constructor.
class Thrown {
 public:
  explicit Thrown(Decoder& decoder) : name_(decoder.container().decode<std::string>("name")) {
    if (name_ == "runtime") throw std::runtime_error("not a DecodingError");
    if (name_ == "memory") throw std::bad_alloc();
  }
  const std::string& name() const { return name_; }

 private:
  std::string name_;
};

// A type of somebody else's.
struct Colour {
  std::string code;
};

Object station() {
  return {{"identifier", 7},
          {"tags", Array{"jazz", "soul"}},
          {"shares", Object{{"day", 0.5}, {"night", 1}}},
          {"song", Object{{"title", "Blue"}}},
          {"history", Array{Object{{"title", "Red"}, {"seconds", 90}}, Object{{"title", "Green"}, {"seconds", null}}}},
          {"unknown", true}};
}

template <class T>
Decoded<T> tryDecode(const Value& value, Habits habits = {}) {
  Decoder decoder = decoderOf(value, habits);
  return decoder.singleValueContainer().tryDecode<T>();
}

template <class T>
std::string errorOf(const Value& value) {
  const auto outcome = tryDecode<T>(value);
  return outcome ? "none" : outcome.error().description();
}

}  // namespace

template <>
struct havrin::DecodingTraits<Colour> {
  static Decoded<Colour> fromDecoder(Decoder& decoder) {
    auto code = decodeValue<std::string>(decoder);
    if (!code) return code.error();
    if (code->size() != 7) return DecodingError::dataCorrupted("no colour code");
    return Colour{*code};
  }
};

namespace {

static_assert(Decodable<Station> && Decodable<Level> && Decodable<Thrown> && Decodable<Colour> && Decodable<long long>);
static_assert(!Decodable<std::string_view> && !Decodable<char> && !Decodable<const char*> && !Decodable<long double>);

TEST(Decoding, ReportsWhatFailedAndWhere) {
  const auto with = [](const char* key, Value value) {
    Object object = station();
    object[key] = std::move(value);
    return Array{station(), object};
  };
  using Stations = std::vector<Station>;
  for (const auto& [error, expected, why] : Rows<std::string, const char*, const char*>{
           {errorOf<Stations>(Array{station()}), "none", "nothing is wrong"},
           {errorOf<Stations>(Array{null}), "valueNotFound at [0]: expected an object, found null",
            "null for an object"},
           {errorOf<Stations>(Object{}), "typeMismatch at the top level: expected an array, found an object",
            "the top"},
           {errorOf<Stations>(with("identifier", "many")),
            "typeMismatch at [1].identifier: expected a 64-bit integer, found the string \"many\"",
            "text for a number"},
           {errorOf<Stations>(with("shares", Object{{"not a word", true}})),
            "typeMismatch at [1].shares[\"not a word\"]: expected a number, found true", "a key that is not a word"},
           {errorOf<Stations>(with("song", Object{{"title", "x"}, {"seconds", 1.5}})),
            "dataCorrupted at [1].song.seconds: expected a 32-bit integer, found the number 1.5", "in an optional"},
           {errorOf<std::vector<Level>>(Array{Object{{"percent", 101}}}), "dataCorrupted at [0]: more than everything",
            "a reason of the type's own"},
           {errorOf<std::map<std::string, Thrown>>(Object{{"a", Object{{"name", 1}}}}),
            "typeMismatch at a.name: expected a string, found the number 1", "an error that was thrown"},
           {errorOf<std::vector<Colour>>(Array{"#FF8800", "red"}), "dataCorrupted at [1]: no colour code", "by traits"},
           {errorOf<int>(Value("a\"b\\\n")),
            "typeMismatch at the top level: expected a 32-bit integer, found the string \"a\\\"b\\\\\\u000A\"",
            "on one line"},
       })
    EXPECT_EQ(error, expected) << why;
}

TEST(Decoding, ThrowsTheSameErrorWithItsWholePath) {
  const Value value = Object{{"stations", Array{Object{{"listeners", "many"}}}}};
  Decoder decoder = decoderOf(value);
  const auto station = [&] { return decoder.container().nestedUnkeyedContainer("stations").nestedContainer(); };
  try {
    static_cast<void>(station().decode<int>("listeners"));
    FAIL() << "nothing was thrown";
  } catch (const DecodingError& error) {
    EXPECT_EQ(error.kind(), DecodingError::Kind::typeMismatch);
    EXPECT_EQ(error.path(), (CodingPath{CodingKey("stations"), CodingKey(std::size_t{0}), CodingKey("listeners")}));
    EXPECT_EQ(error.path()[1].stringValue(), "Index 0");
    EXPECT_EQ(error.path()[1].intValue(), 0);
    EXPECT_EQ(error.path()[2].intValue(), std::nullopt);
    EXPECT_EQ(error.found(), "the string \"many\"");
    EXPECT_STREQ(error.what(),
                 "typeMismatch at stations[0].listeners: expected a 32-bit integer, found the string \"many\"");
  }
  // As a value, the path begins at the container that was asked.
  EXPECT_EQ(station().tryDecode<int>("listeners").error().path(), CodingPath{CodingKey("listeners")});
}

TEST(Decoding, LetsExceptionsOfOtherTypesThrough) {
  const Value runtime = Array{Object{{"name", "runtime"}}};
  EXPECT_THROW(static_cast<void>(decoderOf(runtime).unkeyedContainer().decode<Thrown>()), std::runtime_error);
  const auto outcome = tryDecode<std::vector<Thrown>>(runtime);
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().description(), "dataCorrupted at [0]: not a DecodingError");
  EXPECT_THROW(std::rethrow_exception(outcome.error().underlyingError()), std::runtime_error);
  const Value mismatch = Array{Object{{"name", 1}}};
  EXPECT_EQ(tryDecode<std::vector<Thrown>>(mismatch, {.throws = true}).error().description(),
            "typeMismatch at [0].name: expected a string, found the number 1")
      << "a format that throws its errors";
  // Lack of memory is not an error of decoding, also where errors are values.
  const Value memory = Array{Object{{"name", "memory"}}};
  EXPECT_THROW(static_cast<void>(tryDecode<std::vector<Thrown>>(memory)), std::bad_alloc);
}

TEST(KeyedContainer, HandlesMissingAndNullKeys) {
  const Value value = Object{{"null", null}, {"one", 1}, {"super", Object{{"x", 2}}}};
  Decoder decoder = decoderOf(value);
  const auto container = decoder.container();
  EXPECT_EQ(container.allKeys(), (std::vector<std::string>{"null", "one", "super"}));
  EXPECT_TRUE(container.contains("null"));
  EXPECT_FALSE(container.contains("none"));
  EXPECT_TRUE(container.decodeNil("null"));
  EXPECT_FALSE(container.decodeNil("one"));
  EXPECT_THROW(static_cast<void>(container.decodeNil("none")), DecodingError);
  EXPECT_EQ(container.decodeIfPresent<int>("none"), std::nullopt);
  EXPECT_EQ(container.decodeIfPresent<int>("null"), std::nullopt);
  EXPECT_EQ(container.decodeIfPresent<int>("one"), 1);
  EXPECT_EQ(container.decode<std::optional<int>>("null"), std::nullopt);
  EXPECT_EQ(container.tryDecode<std::optional<int>>("none").error().kind(), DecodingError::Kind::keyNotFound);
  EXPECT_EQ(container.tryDecodeIfPresent<bool>("one").error().kind(), DecodingError::Kind::typeMismatch);
  EXPECT_EQ(container.superDecoder().container().decode<int>("x"), 2);
  EXPECT_TRUE(container.superDecoder("none").singleValueContainer().decodeNil());
  EXPECT_EQ(container.decode<int>("one") + container.decode<int>("one"), 2);
}

enum class StationKey { name, song };
constexpr std::string_view stringValue(StationKey key) { return key == StationKey::name ? "name" : "song"; }
std::optional<StationKey> fromStringValue(std::type_identity<StationKey>, std::string_view text) {
  if (text == "name") return StationKey::name;
  if (text == "song") return StationKey::song;
  return std::nullopt;
}

TEST(KeyedContainer, TakesKeysOfACallersType) {
  const Value value = Object{{"name", "A"}, {"other", 1}, {"song", Object{{"name", "B"}}}};
  Decoder decoder = decoderOf(value);
  const auto container = decoder.container<StationKey>();
  EXPECT_EQ(container.allKeys(), (std::vector<StationKey>{StationKey::name, StationKey::song}));
  EXPECT_EQ(container.decode<std::string>(StationKey::name), "A");
  const auto song = container.nestedContainer<StationKey>(StationKey::song);
  EXPECT_EQ(song.decode<std::string>(StationKey::name), "B");
  EXPECT_EQ(song.codingPath().description(), "song");
}

TEST(UnkeyedContainer, AdvancesOnlyPastDecodedElements) {
  const Value value = Array{1, null, Array{2, "x"}, Object{{"y", 3}}, 4};
  Decoder decoder = decoderOf(value);
  auto container = decoder.unkeyedContainer();
  EXPECT_EQ(container.count(), 5u);
  const auto fails = [&](auto outcome) { return !outcome && !container.isAtEnd(); };

  EXPECT_TRUE(fails(container.tryDecode<std::string>()));
  EXPECT_TRUE(fails(container.tryNestedContainer()));
  EXPECT_TRUE(fails(container.tryNestedUnkeyedContainer()));
  EXPECT_FALSE(container.decodeNil());
  EXPECT_EQ(container.currentIndex(), 0u);
  EXPECT_EQ(container.decode<int>(), 1);

  EXPECT_TRUE(fails(container.tryDecode<int>()));
  EXPECT_EQ(container.currentIndex(), 1u);
  EXPECT_TRUE(container.decodeNil());

  EXPECT_TRUE(fails(container.tryDecode<std::vector<int>>())) << "half of it decodes";
  EXPECT_EQ(container.currentIndex(), 2u);
  auto nested = container.nestedUnkeyedContainer();
  EXPECT_EQ(container.currentIndex(), 3u);
  EXPECT_EQ(nested.decode<int>(), 2);
  EXPECT_EQ(nested.codingPath().description(), "[2]");
  EXPECT_EQ(nested.tryDecode<int>().error().path().description(), "[1]");

  EXPECT_TRUE(fails(container.tryDecode<Song>()));
  EXPECT_EQ(container.nestedContainer().decode<int>("y"), 3);
  Decoder last = container.superDecoder();
  EXPECT_EQ(last.singleValueContainer().decode<int>(), 4);
  EXPECT_EQ(last.codingPath().description(), "[4]");

  EXPECT_TRUE(container.isAtEnd());
  EXPECT_EQ(container.tryDecode<int>().error().description(),
            "valueNotFound at [5]: expected a value, found the end of the array");
  EXPECT_EQ(container.tryDecodeNil().error().kind(), DecodingError::Kind::valueNotFound);
  EXPECT_EQ(container.tryDecode<Song>().error().kind(), DecodingError::Kind::valueNotFound);
  EXPECT_EQ(container.decodeIfPresent<int>(), std::nullopt);
}

TEST(DecodingError, IsReadByManyThreadsAndOutlivesThem) {
  const auto mismatch = [](const std::string& value) {
    return DecodingError::typeMismatch("a number", Found::string, value);
  };
  const std::string ofMany(39, 'x');
  const DecodingError error = mismatch(ofMany + "yé");
  std::vector<std::string> texts(4);
  onThreads(texts.size(), [&texts, copy = error](std::size_t i) { texts[i] = copy.what(); });
  for (const auto& text : texts) EXPECT_EQ(text, error.description());
  EXPECT_EQ(error.found(), "the string \"" + ofMany + "y…\"") << "long values are cut";
  EXPECT_EQ(mismatch(ofMany + "y").found(), "the string \"" + ofMany + "y\"") << "forty bytes are not cut";
  EXPECT_EQ(mismatch(ofMany + "é!").found(), "the string \"" + ofMany + "…\"") << "between characters";
}

TEST(DecodingError, ChangesOneCopyOnly) {
  auto holder = DecodingError::dataCorrupted("why").holder();
  const DecodingError before(holder);
  EXPECT_STREQ(before.what(), "dataCorrupted at the top level: why");
  holder.prepend("inner");
  holder.complete(CodingPath{CodingKey("outer")});
  holder.prepend("ignored");
  EXPECT_STREQ(DecodingError(holder).what(), "dataCorrupted at outer.inner: why");
  EXPECT_STREQ(before.what(), "dataCorrupted at the top level: why");
}

}  // namespace
