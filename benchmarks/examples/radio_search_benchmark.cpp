// SPDX-License-Identifier: Apache-2.0
// One keystroke in the search of examples/radio over a million stations, which tools/make_stations.py makes: the whole
// filter, up to the list of visible stations and its totals. "each_station" lowers the texts of each station anew.
// A benchmark fails when ours takes 50 ms of processor time or more.
#include "../../examples/radio/catalogue.h"
#include "../../examples/radio/station_file.h"
#include <HavrinFoundation/collections/array_blocks_messages.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

using namespace havrin;

constexpr std::size_t kStations = 1'000'000;
constexpr double kLongestSeconds = 0.05;

Strong<NSArray> madeStations() {
  const std::string path =
      (std::filesystem::temp_directory_path() / ("stations-" + std::to_string(getpid()) + ".jsonl")).string();
  const std::string command =
      "python3 " HAVRIN_MAKE_STATIONS " --lines --count " + std::to_string(kStations) + " > " + path;
  const int status = std::system(command.c_str());
  std::atomic<std::size_t> entries = 0;
  const auto file = radio::readStations(path, entries);
  std::filesystem::remove(path);
  if (status != 0 || !file->problem.empty()) throw std::runtime_error("no stations were made: " + file->problem);
  return file->stations;
}

const NSArray& stations() {
  static const Strong<NSArray> kMade = madeStations();
  return *kMade;
}

double processorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void ours(benchmark::State& state, const std::string& text) {
  static radio::Catalogue catalogue(stations());
  double longest = 0;
  for (auto _ : state) {
    const double start = processorSeconds();
    catalogue.apply({text, {}, false});
    benchmark::DoNotOptimize(catalogue.visible().size());
    longest = std::max(longest, processorSeconds() - start);
  }
  state.counters["longest_ms"] = longest * 1000;
  if (longest >= kLongestSeconds) state.SkipWithError("a keystroke took 50 ms or more");
}

std::string lowered(std::string text) {
  for (char& unit : text) {
    if (unit >= 'A' && unit <= 'Z') unit = static_cast<char>(unit + 32);
  }
  return text;
}

void eachStation(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    const auto found = send<"select:">(stations(), [&text](const radio::Station& station) {
      const radio::StationEntry& entry = station.entry();
      return lowered(entry.name + "\n" + entry.genre + "\n" + entry.song).find(text) != std::string::npos;
    });
    benchmark::DoNotOptimize(found->count());
  }
}

}  // namespace

int main(int count, char** words) {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  constexpr std::pair<std::string_view, std::string_view> kCases[] = {
      {"one_letter", "a"}, {"word", "lantern"}, {"nothing", "zzzz"}};
  for (const auto& [name, text] : kCases) {
    const std::string prefix = "radio_search/" + std::string(name) + "/";
    benchmark::RegisterBenchmark((prefix + "ours").c_str(), ours, std::string(text))->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((prefix + "each_station").c_str(), eachStation, std::string(text))
        ->Unit(benchmark::kMillisecond);
  }
  benchmark::Initialize(&count, words);
  benchmark::RunSpecifiedBenchmarks();
}
