// SPDX-License-Identifier: Apache-2.0
#include "studios.h"

#include "station.h"
#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/text/friendly_number.h>

#include <algorithm>
#include <chrono>
#include <random>

namespace radio {

using namespace havrin;

namespace {

constexpr std::size_t kStudios = 2;
constexpr std::int64_t kLive = 400;
constexpr auto kPause = std::chrono::milliseconds(60);

}  // namespace

Strong<NSArray> Studios::live(const NSArray& stations) {
  const auto onAir = send<"select:">(stations, [](const Station& station) { return !station.entry().song.empty(); });
  return send<"arrayByRemovingObjectsFromIndex:">(onAir, kLive);
}

Studios::Studios(const NSArray& stations, Journal& journal) : stations_(stations.snapshot()), journal_(journal) {
  for (std::size_t studio = 0; studio < kStudios; ++studio) threads_.emplace_back([this, studio] { work(studio); });
}

Studios::~Studios() {
  lock_.withLock([this]() HAVRIN_THREAD_SAFETY(no_thread_safety_analysis) { ends_ = true; });
  ended_.notify_all();
  for (std::thread& thread : threads_) thread.join();
  const Tally tally = tally_.perform([](const Tally& last) { return last; });
  journal_.note("studios", friendlyNumber(tally.counts) + " listener counts and " + friendlyNumber(tally.songs) +
                               " songs have changed");
}

void Studios::work(std::size_t studio) {
  std::mt19937 random(static_cast<unsigned>(studio) + 1);
  std::vector<Station*> mine;
  for (std::uint64_t i = studio; i < stations_->count(); i += kStudios) {
    mine.push_back(static_cast<Station*>(stations_->objectAtIndex(i).get()));
  }
  if (mine.empty()) return;
  std::unique_lock guard(lock_);
  // The analysis does not see which lock a closure is called under.
  const auto ends = [this]() HAVRIN_THREAD_SAFETY(no_thread_safety_analysis) { return ends_; };
  while (!ended_.wait_for(guard, kPause, ends)) {
    guard.unlock();
    Station& station = *mine[random() % mine.size()];
    const std::int64_t before = send<"listeners">(station);
    const auto change = static_cast<std::int64_t>(random() % 2001) - 1000;
    station.setListeners(std::max<std::int64_t>(0, before + change * (before / 4000 + 1)));
    // What another station plays is as good a next song as any.
    const bool isNextSong = random() % 4 == 0;
    if (isNextSong) station.setSong(makeString(mine[random() % mine.size()]->entry().song));
    tally_.perform([isNextSong](Tally& tally) {
      ++tally.counts;
      tally.songs += isNextSong ? 1 : 0;
    });
    guard.lock();
  }
}

}  // namespace radio
