// SPDX-License-Identifier: Apache-2.0
#include "loading.h"

#include "station_file.h"
#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/frame/main_queue.h>
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/host_loop.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/foundation/fast_enumeration.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/text/friendly_number.h>

#include <cstdint>
#include <cstdio>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace radio {

using namespace havrin;

namespace {

LoadedStations combined(const NSArray& files) {
  LoadedStations loaded{makeArray({}), {}, {}};
  for (NSObject* object : each(&files)) {
    auto& file = static_cast<StationFile&>(*object);
    if (!file.problem.empty()) return {nullptr, {}, file.problem};
    loaded.stations = send<"arrayByCombiningElementsOfArrays:">(classOf<NSArray>(),
                                                                nilTerminated(loaded.stations, file.stations, nullptr));
    loaded.skipped.insert(loaded.skipped.end(), file.skipped.begin(), file.skipped.end());
  }
  return loaded;
}

}  // namespace

Loading::Loading(const std::vector<std::string>& paths) {
  ArrayBuilder names(paths.size());
  for (const std::string& path : paths) names.add(makeString(path));
  const AsyncTransform read = [state = state_](NSString& path, const AsyncCompletion& done) {
    dispatch_async(dispatch_get_global_queue(),
                   [state, path = utf8(path), done] { done(readStations(path, state->entries).get()); });
  };
  const AsyncResult finish = [state = state_](NSArray* files) {
    GuaranteeMainQueue([state, files = Strong<NSArray>(files)] {
      state->loaded = combined(*files);
      state->isDone = true;
    });
  };
  send<"asyncMap:result:">(names.finish(), read, finish);
}

LoadedStations loadStations(const std::vector<std::string>& paths) {
  constexpr double kPatienceSeconds = 0.5;
  constexpr int kLookMilliseconds = 100;
  const bool mayShow = isatty(STDERR_FILENO);
  const double start = monotonicSeconds();
  bool hasShown = false;
  Loading loading(paths);
  while (!loading.isDone()) {
    pollfd main = {mainLoopDescriptor(), POLLIN, 0};
    poll(&main, 1, kLookMilliseconds);
    drainMainLoop();
    const double seconds = monotonicSeconds() - start;
    if (!mayShow || seconds < kPatienceSeconds || loading.isDone()) continue;
    hasShown = true;
    std::fprintf(stderr, "\rradio: reading stations, %s so far, %.0f s ",
                 friendlyNumber(static_cast<std::int64_t>(loading.entries())).c_str(), seconds);
  }
  if (hasShown) std::fprintf(stderr, "\r%60s\r", "");
  return loading.take();
}

}  // namespace radio
