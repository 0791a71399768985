// SPDX-License-Identifier: Apache-2.0
#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace allocations {
namespace {

constinit std::atomic<std::int64_t> alive{0};
constinit thread_local int left = -1;
constinit thread_local bool failed = false;

void* allocate(std::size_t size, std::size_t alignment) {
  if (left >= 0 && left-- == 0) {
    failed = true;
    throw std::bad_alloc();
  }
  void* const memory = std::aligned_alloc(alignment, (size + alignment) / alignment * alignment);
  if (!memory) throw std::bad_alloc();
  alive.fetch_add(1, std::memory_order_relaxed);
  return memory;
}

void release(void* memory) noexcept {
  if (memory) alive.fetch_sub(1, std::memory_order_relaxed);
  std::free(memory);
}

}  // namespace

std::int64_t living() noexcept { return alive.load(std::memory_order_relaxed); }
void failAt(int count) noexcept {
  left = count;
  failed = false;
}
bool disarm() noexcept {
  left = -1;
  return failed;
}

}  // namespace allocations

// The other forms of new and delete call these.
void* operator new(std::size_t size) { return allocations::allocate(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocations::allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { allocations::release(memory); }
void operator delete(void* memory, std::size_t) noexcept { allocations::release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { allocations::release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { allocations::release(memory); }
