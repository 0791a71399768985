// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/array_buffer.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <thread>
#include <utility>

namespace havrin {
inline namespace platform {

namespace {

constinit std::atomic<std::uint64_t> slotsCopied{0};

// Throws: std::bad_alloc where no memory could be as large.
std::size_t sizeWith(std::uint64_t capacity) {
  constexpr std::size_t kPerSlot = sizeof(ArrayBuffer::Slot) + sizeof(std::uint32_t);
  if (capacity > std::numeric_limits<std::int64_t>::max() / kPerSlot) throw std::bad_alloc();
  return sizeof(ArrayBuffer) + capacity * kPerSlot + sizeof(std::uint32_t);
}

}  // namespace

std::uint64_t arraySlotsCopied() { return slotsCopied.load(std::memory_order_relaxed); }

ArrayBuffer* ArrayBuffer::make(std::uint64_t capacity) {
  void* memory = std::malloc(sizeWith(capacity));
  if (!memory) throw std::bad_alloc();
  return new (memory) ArrayBuffer(capacity);
}

ArrayBuffer* ArrayBuffer::copyOf(const Slot* slots, std::uint64_t length, std::uint64_t capacity) {
  ArrayBuffer* buffer = make(std::max(length, capacity));
  std::uninitialized_copy_n(slots, length, buffer->slots());
  buffer->resizeSole(0, length);
  slotsCopied.fetch_add(length, std::memory_order_relaxed);
  return buffer;
}

ArrayBuffer* ArrayBuffer::grownSole(std::uint64_t length, std::uint64_t capacity) {
  // Nothing in a buffer or a Strong depends on its address, and a large block is moved by the page.
  auto* buffer = static_cast<ArrayBuffer*>(std::realloc(static_cast<void*>(this), sizeWith(capacity)));
  if (!buffer) throw std::bad_alloc();
  buffer->capacity_ = capacity;
  buffer->isCounted_ = false;
  slotsCopied.fetch_add(length, std::memory_order_relaxed);
  return buffer;
}

// Many arrays are filled and read by one handle, which needs no counts; a buffer that once had two keeps counting.
void ArrayBuffer::countHandles() noexcept {
  if (isCounted_) return;
  isCounted_ = true;
  std::memset(ends(), 0, (capacity_ + 1) * sizeof(std::uint32_t));
  ends()[filled_] = 1;
}

std::uint64_t ArrayBuffer::lock() noexcept {
  constexpr int kSpins = 64;  // far longer than the few instructions for which it is held
  for (int spins = 0;; ++spins) {
    std::uint64_t handles = word_.load(std::memory_order_relaxed);
    if (!(handles & kLocked) &&
        word_.compare_exchange_weak(handles, handles | kLocked, std::memory_order_acquire, std::memory_order_relaxed)) {
      return handles;
    }
    if (spins >= kSpins) std::this_thread::yield();  // its holder was taken off its core
  }
}

void ArrayBuffer::share(std::uint64_t length) noexcept {
  const std::uint64_t handles = lock();
  countHandles();
  ++ends()[length];
  unlock(handles + kOneHandle);
}

ArrayBuffer::Slot* ArrayBuffer::claim(std::uint64_t length, std::uint64_t more) noexcept {
  const std::uint64_t handles = lock();
  if (filled_ != length || capacity_ - length < more) {
    unlock(handles);
    return nullptr;
  }
  countHandles();
  filled_ += more;
  ++ends()[filled_];
  unlock(handles + kOneHandle);
  return slots() + length;
}

void ArrayBuffer::end(std::uint64_t length) noexcept {
  if (isSole()) {
    destroy();
    return;
  }
  const std::uint64_t handles = lock();
  --ends()[length];
  if (filled_ != 0 && ends()[filled_] == 0) {
    unlock(handles);
    giveBack();
  } else {
    unlock(handles - kOneHandle);
    if (handles == kOneHandle) destroy();
  }
}

// Releases the elements that no handle covers, then the caller's handle, which until then keeps the buffer alive.
// Elements are taken out under the lock in small batches and released outside of it, because releasing runs user code.
void ArrayBuffer::giveBack() noexcept {
  constexpr int kBatch = 16;
  for (;;) {
    Slot released[kBatch];
    int count = 0;
    const std::uint64_t handles = lock();
    while (count < kBatch && filled_ != 0 && ends()[filled_] == 0) {
      Slot& last = slots()[--filled_];
      released[count++] = std::move(last);
      last.~Slot();  // NOLINT(bugprone-use-after-move): only its life ends
    }
    if (count == kBatch) {
      unlock(handles);
      continue;
    }
    unlock(handles - kOneHandle);
    if (handles == kOneHandle) destroy();
    return;
  }
}

void ArrayBuffer::destroy() noexcept {
  std::destroy_n(slots(), filled_);
  std::free(this);
}

}  // namespace platform
}  // namespace havrin
