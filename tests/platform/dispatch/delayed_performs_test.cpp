// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/dispatch/delayed_performs.h>

#include <algorithm>

namespace {

using namespace havrin;

const void* address(std::size_t number) {
  static const char bytes[4096] = {};
  return bytes + number;
}

void cancelSame(DelayedPerforms& performs, const PerformKey& key) {
  performs.cancel(key, [](const void*) { return false; });
}

TEST(DelayedPerforms, HoldsFewPlacesForRequestsThatAreMovedOrCancelled) {
  DelayedPerforms burst;
  const PerformKey key{address(1), address(2)};
  burst.schedule(key, {0, 0}, detail::Work([] {}));
  std::uint64_t rank = 1;
  for (; rank <= 1'000'000; ++rank) {
    ASSERT_TRUE(burst.postpone(key.target, key.selector, {static_cast<double>(rank), rank}));
  }
  EXPECT_EQ(burst.places(), 1u);
  for (; rank <= 2'000'000; ++rank) {  // the same by cancelling and scheduling again
    cancelSame(burst, key);
    burst.schedule(key, {static_cast<double>(rank), rank}, detail::Work([] {}));
  }
  EXPECT_EQ(burst.places(), 1u);
  EXPECT_EQ(burst.first()->deadline, 2e6);

  for (std::size_t i = 1; i < 100'000; ++i) {
    const PerformKey many{address(10 + i % 4000), address(i % 3)};
    burst.schedule(many, {1e9, rank++}, detail::Work([] {}));
    cancelSame(burst, many);
    ASSERT_LE(burst.places(), 200u);
  }
  EXPECT_EQ(burst.size(), 1u);
}

// The same, slowly.
struct Model {
  struct Request {
    PerformKey key;
    DueTime due;
    int id;
  };
  std::vector<Request> requests;

  void cancel(const PerformKey& key) {
    std::erase_if(requests, [&](const Request& r) {
      return r.key.target == key.target && r.key.selector == key.selector && r.key.argument == key.argument;
    });
  }
  bool postpone(const PerformKey& key, DueTime due) {
    const auto same = [&](const Request& r) { return r.key.target == key.target && r.key.selector == key.selector; };
    const auto found = std::find_if(requests.begin(), requests.end(), same);
    if (std::count_if(requests.begin(), requests.end(), same) != 1 || found->key.argument != nullptr) return false;
    found->due = due;
    return true;
  }
  Request takeFirst() {
    const auto first = std::min_element(requests.begin(), requests.end(),
                                        [](const Request& a, const Request& b) { return a.due < b.due; });
    const Request taken = *first;
    requests.erase(first);
    return taken;
  }
};

TEST(DelayedPerforms, BehavesAsASimpleListDoes) {
  std::mt19937_64 random = seededGenerator();
  DelayedPerforms performs;
  Model model;
  int lastRun = 0;
  std::uint64_t rank = 0;
  for (int step = 0; step < 100'000; ++step) {
    // Few keys and few deadlines at times, many at others; half of the arguments are null.
    const std::size_t spread = step / 10'000 % 2 == 0 ? 5 : 500;
    const PerformKey key{address(1 + random() % spread), address(random() % 2),
                         random() % 2 == 0 ? nullptr : address(random() % 2)};
    const DueTime due{static_cast<double>(random() % (2 * spread)), rank++};
    switch (random() % 5) {
      case 0:
      case 1:
        performs.schedule(key, due, Work([&lastRun, step] { lastRun = step; }));
        model.requests.push_back({key, due, step});
        break;
      case 2:
        cancelSame(performs, key);
        model.cancel(key);
        break;
      case 3:
        ASSERT_EQ(performs.postpone(key.target, key.selector, due), model.postpone(key, due)) << step;
        break;
      case 4:
        if (const std::optional<DueTime> first = performs.first()) {
          performs.takeFirst().run();
          ASSERT_EQ(lastRun, model.takeFirst().id) << step;
        } else {
          ASSERT_TRUE(model.requests.empty());
        }
        break;
    }
    ASSERT_EQ(performs.size(), model.requests.size()) << step;
  }
}

}  // namespace
