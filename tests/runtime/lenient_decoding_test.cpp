// SPDX-License-Identifier: Apache-2.0
#include "../platform/decoding/value_decoder.h"
#include <HavrinFoundation/platform/decoding/json_decoder.h>
#include <HavrinFoundation/runtime/lenient_decoding.h>

namespace {

using namespace havrin;
using namespace value_decoder;

// Counts how many elements were begun, so that a half-decoded one can be told from one that was not tried.
struct Station {
  std::string name;
  std::int64_t listeners = 0;
  std::vector<std::int64_t> plays;

  using Fields = FieldList<Field<"name", &Station::name>, Field<"plays", &Station::plays>,
                           Field<"listeners", &Station::listeners>>;
};

// Keeps the integers of a list with other elements. Throws what is not a DecodingError.
struct Show {
  explicit Show(Decoder& decoder)
      : plays(decodeArraySkippingInvalidElements<std::int64_t>(decoder.container(), "plays")) {
    if (plays.empty()) throw std::runtime_error("no play");
  }
  std::vector<std::int64_t> plays;
};

template <class T>
std::vector<T> decodedFrom(std::string_view json) {
  return JSONDecoder().read(json, [](Decoder& document) {
    auto container = document.unkeyedContainer();
    auto elements = decodeSkippingInvalidElements<T>(container);
    EXPECT_TRUE(container.isAtEnd());
    return elements;
  });
}

template <class T>
std::string texts(const std::vector<T>& values);
std::string shown(std::int64_t value) { return std::to_string(value); }
std::string shown(std::optional<std::int64_t> value) { return value ? shown(*value) : "empty"; }
std::string shown(const std::vector<std::int64_t>& values) { return "[" + texts(values) + "]"; }
template <class T>
std::string texts(const std::vector<T>& values) {
  std::string text;
  for (const T& value : values) text += (text.empty() ? "" : " ") + shown(value);
  return text;
}

// What the DecodingError says that `body` throws; empty for none.
template <class F>
std::string errorOf(F body) {
  try {
    body();
  } catch (const DecodingError& error) {
    return error.what();
  }
  return {};
}

TEST(LenientDecoding, KeepsWhatDecodesInOrder) {
  using Integer = std::int64_t;
  for (const auto& [json, integers, optionals, arrays, why] :
       Rows<const char*, const char*, const char*, const char*, const char*>{
           {"[]", "", "", "", "nothing at all"},
           {"[1,null,3]", "1 3", "1 empty 3", "", "a null is a bad integer and an empty optional"},
           {"[1,1.5,true,\"x\",{},[],2]", "1 2", "1 2", "[]", "every kind of element"},
           {"[1e400,-9223372036854775809,1e2,-0.0,4.0]", "100 0 4", "100 0 4", "",
            "numbers that are whole, and that are not"},
           {"[[1],[\"x\"],[2,3],4,[null]]", "4", "4", "[1] [2 3]", "an array fails as a whole"},
           {"[[],[[]],{\"a\":[1]}]", "", "", "[]", "containers inside are stepped over"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(texts(decodedFrom<Integer>(json)), integers);
    EXPECT_EQ(texts(decodedFrom<std::optional<Integer>>(json)), optionals);
    EXPECT_EQ(texts(decodedFrom<std::vector<Integer>>(json)), arrays);
  }
}

constexpr std::string_view kStations = R"({"stations": [
    {"name": "A", "plays": [1, 2], "listeners": 10},
    {"name": "B", "plays": [1, "many"], "listeners": 20},
    null,
    {"name": "C", "plays": [], "listeners": "30"},
    "D",
    {"plays": [], "listeners": 40},
    {"name": "E", "plays": [3], "listeners": 50, "unknown": {}}
  ], "text": "x", "object": {}, "null": null})";

TEST(LenientDecoding, SkipsHalfDecodedElementsAndReportsThem) {
  std::vector<std::string> reports;
  std::vector<std::size_t> indexes;
  const auto stations = JSONDecoder().read(kStations, [&](Decoder& document) {
    return decodeArraySkippingInvalidElements<Station>(document.container(), "stations",
                                                       [&](const SkippedElement& element) {
                                                         reports.emplace_back(element.reason.what());
                                                         indexes.push_back(element.index);
                                                         EXPECT_EQ(element.path, element.reason.path());
                                                       });
  });
  ASSERT_EQ(stations.size(), 2u);
  EXPECT_EQ(stations[0].name + stations[1].name, "AE");
  EXPECT_EQ(texts(stations[0].plays), "1 2");
  EXPECT_EQ(stations[1].listeners, 50);
  EXPECT_EQ(indexes, (std::vector<std::size_t>{1, 2, 3, 4, 5}));
  EXPECT_EQ(reports, (std::vector<std::string>{
                         "typeMismatch at stations[1].plays[1]: expected a 64-bit integer, found the string \"many\"",
                         "valueNotFound at stations[2]: expected an object, found null",
                         "typeMismatch at stations[3].listeners: expected a 64-bit integer, found the string \"30\"",
                         "typeMismatch at stations[4]: expected an object, found the string \"D\"",
                         "keyNotFound at stations[5]: no value for the key \"name\"",
                     }));
}

TEST(LenientDecoding, PassesOnAnExceptionOfTheReport) {
  EXPECT_THROW(JSONDecoder().read("[1,null,2]",
                                  [](Decoder& document) {
                                    auto container = document.unkeyedContainer();
                                    return decodeSkippingInvalidElements<int>(
                                        container, [](const SkippedElement&) { throw std::logic_error("enough"); });
                                  }),
               std::logic_error);
}

TEST(LenientDecoding, PassesOnTheErrorOfOpeningTheArray) {
  JSONDecoder().read(kStations, [](Decoder& document) {
    const auto container = document.container();
    for (const char* key : {"absent", "text", "object", "null"}) {
      SCOPED_TRACE(key);
      const std::string expected = errorOf([&] { (void)container.nestedUnkeyedContainer(key); });
      const auto outcome = tryDecodeArraySkippingInvalidElements<Station>(container, key);
      ASSERT_FALSE(outcome);
      EXPECT_EQ(outcome.error().what(), expected);
      EXPECT_EQ(errorOf([&] { (void)decodeArraySkippingInvalidElements<Station>(container, key); }), expected);
    }
  });
}

TEST(LenientDecoding, DecodesNestedListsInAConstructor) {
  const std::string_view json = R"([{"plays":[1,"x"]},{"plays":["y"]},{"play":[1]},{"plays":[2,null,3]}])";
  const auto shows = decodedFrom<Show>(json);
  ASSERT_EQ(shows.size(), 2u) << "an exception of any type skips its element";
  EXPECT_EQ(texts(shows[0].plays) + "/" + texts(shows[1].plays), "1/2 3");
}

TEST(LenientDecoding, DecodesFormatsThatThrowOrDoNotKnowTheirCount) {
  const Value value = Object{{"numbers", Array{1, "x", null, Array{2}, 3.0, Object{}, 4}}};
  for (const bool knowsCount : {true, false}) {
    for (const bool throws : {true, false}) {
      SCOPED_TRACE(std::string(knowsCount ? "knows its count" : "does not") + (throws ? ", throws" : ""));
      const Habits habits{.knowsCount = knowsCount, .throws = throws};
      const auto container = decoderOf(value, habits).container();
      EXPECT_EQ(texts(decodeArraySkippingInvalidElements<std::int64_t>(container, "numbers")), "1 3 4");
      EXPECT_EQ(texts(decodeArraySkippingInvalidElements<std::vector<std::int64_t>>(container, "numbers")), "[2]");
      // From wherever the container stands.
      auto array = container.nestedUnkeyedContainer("numbers");
      EXPECT_EQ(array.decode<int>(), 1);
      EXPECT_EQ(texts(decodeSkippingInvalidElements<std::int64_t>(array)), "3 4");
      EXPECT_TRUE(decodeSkippingInvalidElements<std::int64_t>(array).empty()) << "at the end";
    }
  }
}

TEST(LenientDecoding, FailsWhereTheFormatCannotStep) {
  const Value value = Object{{"numbers", Array{1, 2, "x", 3}}};
  const Habits stuck{.canStep = false};
  for (const auto& [habits, error, why] : Rows<Habits, const char*, const char*>{
           {stuck, "dataCorrupted at numbers[0]: no way to step", "a format that cannot move"},
           {{.failsFrom = 2},
            "dataCorrupted at numbers[2]: the stream has broken off",
            "after two elements that decoded"},
           {{.failsFrom = 2, .throws = true},
            "dataCorrupted at numbers[2]: the stream has broken off",
            "by an exception"},
       }) {
    SCOPED_TRACE(why);
    const auto container = decoderOf(value, habits).container();
    const auto outcome = tryDecodeArraySkippingInvalidElements<std::int64_t>(container, "numbers");
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().description(), error);
    EXPECT_EQ(errorOf([&] { (void)decodeArraySkippingInvalidElements<std::int64_t>(container, "numbers"); }), error);
  }
  // An element that fails where its array cannot step fails the array, which is then an element that fails.
  const Value nested = Array{Array{1}, 2};
  EXPECT_FALSE(decoderOf(nested, stuck).tryUnkeyedContainer()->tryDecode<std::vector<int>>());
}

}  // namespace
