// SPDX-License-Identifier: Apache-2.0
// A first-in, first-out list of closures, in blocks that are never moved: adding one costs the same however many wait.
// Not thread-safe; its owner guards it.
#pragma once

#include <HavrinFoundation/platform/dispatch/work.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace havrin {
inline namespace platform {

using detail::Work;

class WorkFifo {
 public:
  WorkFifo() = default;
  WorkFifo(const WorkFifo&) = delete;
  WorkFifo& operator=(const WorkFifo&) = delete;
  ~WorkFifo() {
    while (!empty()) pop();
    delete first_;
    delete spare_;
  }

  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] std::size_t size() const { return size_; }

  void push(Work&& work) {
    if (last_ == nullptr || end_ == kBlockSize) addBlock();
    std::construct_at(last_->at(end_++), std::move(work));
    ++size_;
  }

  /// The oldest one, which must be there.
  Work pop() {
    Work* const place = first_->at(begin_++);
    Work oldest = std::move(*place);
    std::destroy_at(place);
    if (--size_ == 0) {
      begin_ = end_ = 0;
    } else if (begin_ == kBlockSize) {
      dropBlock();
    }
    return oldest;
  }

  void swap(WorkFifo& other) noexcept {
    std::swap(first_, other.first_);
    std::swap(last_, other.last_);
    std::swap(spare_, other.spare_);
    std::swap(size_, other.size_);
    std::swap(begin_, other.begin_);
    std::swap(end_, other.end_);
  }

 private:
  // A block of 1008 bytes, the largest that the allocator hands out again without searching.
  static constexpr std::uint32_t kBlockSize = 31;
  struct Block {
    Block* next = nullptr;
    alignas(Work) std::byte storage[kBlockSize * sizeof(Work)];
    Work* at(std::uint32_t index) { return reinterpret_cast<Work*>(storage) + index; }
  };

  void addBlock() {
    Block* block = spare_ != nullptr ? std::exchange(spare_, nullptr) : new Block;
    (last_ != nullptr ? last_->next : first_) = block;
    last_ = block;
    end_ = 0;
  }
  // One block stays for the next that is needed.
  void dropBlock() {
    Block* const empty = std::exchange(first_, first_->next);
    begin_ = 0;
    empty->next = nullptr;
    delete std::exchange(spare_, empty);
  }

  Block* first_ = nullptr;
  Block* last_ = nullptr;
  Block* spare_ = nullptr;
  std::size_t size_ = 0;
  std::uint32_t begin_ = 0;  // of the oldest, in the first block
  std::uint32_t end_ = 0;    // behind the newest, in the last block
};

}  // namespace platform
}  // namespace havrin
