// SPDX-License-Identifier: Apache-2.0
// A first-in, first-out list of closures. Not thread-safe; its owner guards it.
#pragma once

#include <HavrinFoundation/platform/dispatch/work.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

using detail::Work;

class WorkFifo {
 public:
  [[nodiscard]] bool empty() const { return head_ == items_.size(); }
  [[nodiscard]] std::size_t size() const { return items_.size() - head_; }

  void push(Work&& work) { items_.push_back(std::move(work)); }

  /// The oldest one, which must be there.
  Work pop() {
    Work oldest = std::move(items_[head_++]);
    if (empty()) {
      clear();
    } else if (head_ >= kCompactAt && head_ * 2 >= items_.size()) {
      // Without this, a queue that never becomes empty would grow with every closure it ever held.
      items_.erase(items_.begin(), items_.begin() + static_cast<std::ptrdiff_t>(head_));
      head_ = 0;
    }
    return oldest;
  }

  void swap(WorkFifo& other) noexcept {
    items_.swap(other.items_);
    std::swap(head_, other.head_);
  }

 private:
  static constexpr std::size_t kCompactAt = 64;
  static constexpr std::size_t kKeptCapacity = 4096;

  void clear() {
    items_.clear();
    head_ = 0;
    if (items_.capacity() > kKeptCapacity) std::vector<Work>().swap(items_);
  }

  std::vector<Work> items_;
  std::size_t head_ = 0;
};

}  // namespace platform
}  // namespace havrin
