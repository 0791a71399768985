// SPDX-License-Identifier: Apache-2.0
// Lenient decoding beside other ways to read an array of objects of which some are bad. Every reader keeps the good
// elements and skips the bad ones; sizes are elements, the last part of a case is the share of bad ones in percent.
#include <HavrinFoundation/platform/decoding/json_decoder.h>
#include <HavrinFoundation/runtime/lenient_decoding.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <simdjson.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace havrin;

constexpr int kElements = 100'000;

struct Station {
  std::int64_t identifier = 0;
  std::string name;
  std::int64_t listeners = 0;
  double share = 0;
  bool favourite = false;

  using Fields = FieldList<Field<"identifier", &Station::identifier>, Field<"name", &Station::name>,
                           Field<"listeners", &Station::listeners>, Field<"share", &Station::share>,
                           Field<"favourite", &Station::favourite>>;
};

// The same by hand, with errors thrown.
struct ThrowingStation {
  explicit ThrowingStation(Decoder& decoder) {
    const auto container = decoder.container();
    identifier = container.decode<std::int64_t>("identifier");
    name = container.decode<std::string>("name");
    listeners = container.decode<std::int64_t>("listeners");
    share = container.decode<double>("share");
    favourite = container.decode<bool>("favourite");
  }

  std::int64_t identifier = 0;
  std::string name;
  std::int64_t listeners = 0;
  double share = 0;
  bool favourite = false;
};

bool isBad(int element, int badPercent) {
  return badPercent == 50 ? element % 2 == 1 : badPercent != 0 && element % 100 == 99;
}
int goodElements(int badPercent, int elements = kElements) { return elements - elements * badPercent / 100; }

std::string stationsText(int badPercent, int elements = kElements) {
  std::string text = "{\"stations\":[";
  for (int element = 0; element < elements; ++element) {
    const int listeners = element * 37 % 100'000;
    char number[16];
    std::snprintf(number, sizeof number, isBad(element, badPercent) ? "\"%d\"" : "%d", listeners);
    char line[200];
    std::snprintf(
        line, sizeof line,
        "%s{\"identifier\":%d,\"name\":\"Station number %d\",\"listeners\":%s,\"share\":%d.25,\"favourite\":%s}",
        element == 0 ? "" : ",", element, element, number, element % 100, element % 3 == 0 ? "false" : "true");
    text += line;
  }
  return text += "]}";
}

std::string integersText(int badPercent) {
  std::string text = "{\"integers\":[";
  for (int element = 0; element < kElements; ++element) {
    if (element != 0) text += ',';
    const std::string number = std::to_string(element * 37LL % 1'000'000'007);
    text += isBad(element, badPercent) ? '"' + number + '"' : number;
  }
  return text += "]}";
}

void require(bool condition) {
  if (!condition) std::abort();
}

template <class T>
void decodesArray(benchmark::State& state, const std::string& text, const char* key, int badPercent,
                  int count = kElements) {
  JSONDecoder decoder;
  for (auto _ : state) {
    auto elements = decoder.read(
        text, [&](Decoder& document) { return decodeArraySkippingInvalidElements<T>(document.container(), key); });
    require(elements.size() == static_cast<std::size_t>(goodElements(badPercent, count)));
    benchmark::DoNotOptimize(elements.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

// ---------------------------------------------------------------------------------------------------------- peers

void onDemand(benchmark::State& state, const std::string& plain, int badPercent, int elements = kElements) {
  const simdjson::padded_string text(plain);
  simdjson::ondemand::parser parser;
  for (auto _ : state) {
    std::vector<Station> stations;
    stations.reserve(static_cast<std::size_t>(elements));
    simdjson::ondemand::document document;
    simdjson::ondemand::array array;
    require(!parser.iterate(text).get(document) && !document["stations"].get_array().get(array));
    for (auto element : array) {
      simdjson::ondemand::object object;
      std::string_view name;
      Station station;
      if (element.get_object().get(object) || object["identifier"].get_int64().get(station.identifier) ||
          object["name"].get_string().get(name) || object["listeners"].get_int64().get(station.listeners) ||
          object["share"].get_double().get(station.share) || object["favourite"].get_bool().get(station.favourite)) {
        continue;
      }
      station.name = name;
      stations.push_back(std::move(station));
    }
    require(stations.size() == static_cast<std::size_t>(goodElements(badPercent, elements)));
    benchmark::DoNotOptimize(stations.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

void dom(benchmark::State& state, const std::string& plain, int badPercent, int elements = kElements) {
  const simdjson::padded_string text(plain);
  simdjson::dom::parser parser;
  for (auto _ : state) {
    std::vector<Station> stations;
    stations.reserve(static_cast<std::size_t>(elements));
    simdjson::dom::array array;
    require(!parser.parse(text)["stations"].get_array().get(array));
    for (const simdjson::dom::element element : array) {
      std::string_view name;
      Station station;
      if (element["identifier"].get_int64().get(station.identifier) || element["name"].get_string().get(name) ||
          element["listeners"].get_int64().get(station.listeners) || element["share"].get_double().get(station.share) ||
          element["favourite"].get_bool().get(station.favourite)) {
        continue;
      }
      station.name = name;
      stations.push_back(std::move(station));
    }
    require(stations.size() == static_cast<std::size_t>(goodElements(badPercent, elements)));
    benchmark::DoNotOptimize(stations.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

void domThrowing(benchmark::State& state, const std::string& plain, int badPercent) {
  const simdjson::padded_string text(plain);
  simdjson::dom::parser parser;
  for (auto _ : state) {
    std::vector<Station> stations;
    stations.reserve(kElements);
    for (const simdjson::dom::element element : parser.parse(text)["stations"].get_array()) {
      try {
        Station station;
        station.identifier = element["identifier"].get_int64();
        station.name = std::string_view(element["name"]);
        station.listeners = element["listeners"].get_int64();
        station.share = element["share"].get_double();
        station.favourite = element["favourite"].get_bool();
        stations.push_back(std::move(station));
      } catch (const simdjson::simdjson_error&) {
      }
    }
    require(stations.size() == static_cast<std::size_t>(goodElements(badPercent)));
    benchmark::DoNotOptimize(stations.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

void nlohmannThrowing(benchmark::State& state, const std::string& text, int badPercent) {
  for (auto _ : state) {
    std::vector<Station> stations;
    stations.reserve(kElements);
    const auto document = nlohmann::json::parse(text);
    for (const auto& element : document.at("stations")) {
      try {
        Station station;
        station.identifier = element.at("identifier").get<std::int64_t>();
        station.name = element.at("name").get<std::string>();
        station.listeners = element.at("listeners").get<std::int64_t>();
        station.share = element.at("share").get<double>();
        station.favourite = element.at("favourite").get<bool>();
        stations.push_back(std::move(station));
      } catch (const nlohmann::json::exception&) {
      }
    }
    require(stations.size() == static_cast<std::size_t>(goodElements(badPercent)));
    benchmark::DoNotOptimize(stations.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

void qtJson(benchmark::State& state, const std::string& plain, int badPercent) {
  const QByteArray text = QByteArray::fromStdString(plain);
  for (auto _ : state) {
    std::vector<Station> stations;
    stations.reserve(kElements);
    const QJsonArray array = QJsonDocument::fromJson(text).object().value(QLatin1String("stations")).toArray();
    for (const auto& element : array) {
      const QJsonObject object = element.toObject();
      const QJsonValue identifier = object.value(QLatin1String("identifier"));
      const QJsonValue name = object.value(QLatin1String("name"));
      const QJsonValue listeners = object.value(QLatin1String("listeners"));
      const QJsonValue share = object.value(QLatin1String("share"));
      const QJsonValue favourite = object.value(QLatin1String("favourite"));
      if (!identifier.isDouble() || !name.isString() || !listeners.isDouble() || !share.isDouble() ||
          !favourite.isBool()) {
        continue;
      }
      stations.push_back({identifier.toInteger(), name.toString().toStdString(), listeners.toInteger(),
                          share.toDouble(), favourite.toBool()});
    }
    require(stations.size() == static_cast<std::size_t>(goodElements(badPercent)));
    benchmark::DoNotOptimize(stations.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

// --------------------------------------------------------------------------------------------------- the loop alone

// An array in memory of which some values do not decode: nothing but the loop is left to measure. One virtual call
// gives an element in all three forms.
class Row {
 public:
  explicit Row(int badPercent) : badPercent_(badPercent) {}
  virtual ~Row() = default;
  Row(const Row&) = delete;
  Row& operator=(const Row&) = delete;
  [[gnu::noipa]] virtual bool isAtEnd() const { return index_ == kElements; }
  [[gnu::noipa]] virtual bool next(std::int64_t& value) {
    if (isBad(index_, badPercent_)) return false;
    value = index_++;
    return true;
  }
  [[gnu::noipa]] virtual std::int64_t nextOrThrow() {
    if (isBad(index_, badPercent_)) throw std::runtime_error("bad");
    return index_++;
  }
  [[gnu::noipa]] virtual void skip() { ++index_; }

 private:
  int index_ = 0;
  int badPercent_;
};

// Not inlined, so that the calls stay virtual.
[[gnu::noipa]] std::unique_ptr<Row> hiddenRow(int badPercent) { return std::make_unique<Row>(badPercent); }

class RowSource final : public DecodingSource {
 public:
  explicit RowSource(int badPercent) : badPercent_(badPercent) {}
  Found kind(Value) const override { return Found::array; }
  void read(Value, ScalarTarget& target) const override { target.refuse(Found::string); }
  std::vector<std::string> allKeys(Value) const override { return {}; }
  Decoded<Value> find(ObjectCursor&, std::string_view) const override { return kNone; }
  std::optional<std::size_t> count(Value) const override { return kElements; }
  Value first(Value) const override { return 0; }
  bool isAtEnd(const ArrayCursor& cursor) const override { return cursor.at == kElements; }
  Decoded<Value> current(const ArrayCursor& cursor) const override { return cursor.at; }
  Decoded<void> advance(ArrayCursor& cursor) const override {
    ++cursor.at;
    return {};
  }
  void readElement(ArrayCursor& cursor, ScalarTarget& target) const override {
    if (isBad(static_cast<int>(cursor.at), badPercent_)) return target.refuse(Found::string);
    target.putInteger(static_cast<std::int64_t>(cursor.at++));
  }

 private:
  int badPercent_;
};

void loopOurs(benchmark::State& state, int badPercent) {
  for (auto _ : state) {
    const RowSource source(badPercent);
    Decoder decoder(source, 0);
    auto container = decoder.unkeyedContainer();
    auto values = decodeSkippingInvalidElements<std::int64_t>(container);
    require(values.size() == static_cast<std::size_t>(goodElements(badPercent)));
    benchmark::DoNotOptimize(values.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

void loopBool(benchmark::State& state, int badPercent) {
  for (auto _ : state) {
    const std::unique_ptr<Row> hidden = hiddenRow(badPercent);
    std::vector<std::int64_t> values;
    values.reserve(kElements);
    while (!hidden->isAtEnd()) {
      std::int64_t value = 0;
      if (hidden->next(value)) {
        values.push_back(value);
      } else {
        hidden->skip();
      }
    }
    require(values.size() == static_cast<std::size_t>(goodElements(badPercent)));
    benchmark::DoNotOptimize(values.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

void loopThrowing(benchmark::State& state, int badPercent) {
  for (auto _ : state) {
    const std::unique_ptr<Row> hidden = hiddenRow(badPercent);
    std::vector<std::int64_t> values;
    values.reserve(kElements);
    while (!hidden->isAtEnd()) {
      try {
        values.push_back(hidden->nextOrThrow());
      } catch (const std::exception&) {
        hidden->skip();
      }
    }
    require(values.size() == static_cast<std::size_t>(goodElements(badPercent)));
    benchmark::DoNotOptimize(values.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  static std::vector<std::string> texts;
  texts.reserve(6);
  for (const int bad : {0, 1, 50}) {
    const std::string& stations = texts.emplace_back(stationsText(bad));
    const std::string& integers = texts.emplace_back(integersText(bad));
    const auto add = [bad](const char* facilityCase, const char* who, auto body) {
      benchmark::RegisterBenchmark(
          ("lenient_decoding/" + std::string(facilityCase) + "/" + std::to_string(bad) + "/" + who).c_str(), body);
    };
    add("loop", "ours", [bad](benchmark::State& state) { loopOurs(state, bad); });
    add("loop", "bool", [bad](benchmark::State& state) { loopBool(state, bad); });
    add("loop", "throw", [bad](benchmark::State& state) { loopThrowing(state, bad); });
    add("integers", "ours",
        [bad, &integers](benchmark::State& state) { decodesArray<std::int64_t>(state, integers, "integers", bad); });
    add("stations", "ours",
        [bad, &stations](benchmark::State& state) { decodesArray<Station>(state, stations, "stations", bad); });
    add("throwing_stations", "ours",
        [bad, &stations](benchmark::State& state) { decodesArray<ThrowingStation>(state, stations, "stations", bad); });
    add("stations", "simdjson_ondemand", [bad, &stations](benchmark::State& state) { onDemand(state, stations, bad); });
    add("stations", "simdjson_dom", [bad, &stations](benchmark::State& state) { dom(state, stations, bad); });
    add("stations", "simdjson_dom_throw",
        [bad, &stations](benchmark::State& state) { domThrowing(state, stations, bad); });
    add("stations", "nlohmann", [bad, &stations](benchmark::State& state) { nlohmannThrowing(state, stations, bad); });
    add("stations", "qt", [bad, &stations](benchmark::State& state) { qtJson(state, stations, bad); });
  }
  static std::vector<std::string> growing;
  growing.reserve(7);
  for (int elements = 1; elements <= 1'000'000; elements *= 10) {
    const std::string& text = growing.emplace_back(stationsText(0, elements));
    const std::string label = "growth/decoding/" + std::to_string(elements);
    benchmark::RegisterBenchmark((label + "/ours").c_str(), [elements, &text](benchmark::State& state) {
      decodesArray<Station>(state, text, "stations", 0, elements);
    });
    benchmark::RegisterBenchmark((label + "/simdjson_dom").c_str(),
                                 [elements, &text](benchmark::State& state) { dom(state, text, 0, elements); });
    benchmark::RegisterBenchmark((label + "/simdjson_ondemand").c_str(),
                                 [elements, &text](benchmark::State& state) { onDemand(state, text, 0, elements); });
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
