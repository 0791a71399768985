// SPDX-License-Identifier: Apache-2.0
// The studios: threads that change songs and listener counts while the board looks on.
#pragma once

#include <HavrinFoundation/platform/foundation/array.h>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace radio {

class Studios {
 public:
  /// Starts the threads. Each works on stations of its own, and on no other's.
  explicit Studios(const havrin::NSArray& stations);
  /// Ends and joins them.
  ~Studios();
  Studios(const Studios&) = delete;
  Studios& operator=(const Studios&) = delete;

 private:
  void work(std::size_t studio);

  havrin::Strong<havrin::NSArray> stations_;
  std::mutex mutex_;
  std::condition_variable ended_;
  bool ends_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace radio
