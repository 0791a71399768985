// SPDX-License-Identifier: Apache-2.0
// The studios: threads that change songs and listener counts while the board looks on.
#pragma once

#include "journal.h"
#include <HavrinFoundation/frame/locked.h>
#include <HavrinFoundation/frame/unfair_lock.h>
#include <HavrinFoundation/platform/foundation/array.h>

#include <condition_variable>
#include <cstdint>
#include <thread>
#include <vector>

namespace radio {

class Studios {
 public:
  /// The stations that have a studio: the first few hundred on the air.
  static havrin::Strong<havrin::NSArray> live(const havrin::NSArray& stations);

  /// Starts the threads on live stations. Each works on stations of its own, and on no other's.
  Studios(const havrin::NSArray& stations, Journal& journal);
  /// Ends and joins them, and notes how much they have changed.
  ~Studios();
  Studios(const Studios&) = delete;
  Studios& operator=(const Studios&) = delete;

 private:
  void work(std::size_t studio);

  havrin::Strong<havrin::NSArray> stations_;
  struct Tally {
    std::int64_t counts = 0;
    std::int64_t songs = 0;
  };

  Journal& journal_;
  havrin::Locked<Tally> tally_{Tally()};
  havrin::UnfairLock lock_;
  std::condition_variable_any ended_;
  bool ends_ HAVRIN_THREAD_SAFETY(guarded_by(lock_)) = false;
  std::vector<std::thread> threads_;
};

}  // namespace radio
