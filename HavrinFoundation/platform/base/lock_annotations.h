// SPDX-License-Identifier: Apache-2.0
// What a lock reports to clang's static analysis and to the thread sanitizer.
//
//   struct Counter {
//     os_unfair_lock lock;
//     int count HAVRIN_THREAD_SAFETY(guarded_by(lock)) = 0;
//   };
//
// With -Wthread-safety clang rejects code that uses `count` without holding `lock`.
//
// The sanitizer sees a lock, with its holder and its order, and not a loop over an atomic word. Without the sanitizer
// the functions are empty; compilers other than clang ignore the annotations.
#pragma once

#if defined(__clang__)
#define HAVRIN_THREAD_SAFETY(...) __attribute__((__VA_ARGS__))
#else
#define HAVRIN_THREAD_SAFETY(...)
#endif

// The sanitizer's own interface, declared here because its header is not installed with every compiler.
extern "C" {
void __tsan_mutex_pre_lock(void* lock, unsigned flags);
void __tsan_mutex_post_lock(void* lock, unsigned flags, int recursion);
int __tsan_mutex_pre_unlock(void* lock, unsigned flags);
void __tsan_mutex_post_unlock(void* lock, unsigned flags);
}

namespace havrin {
inline namespace platform {
namespace lock_annotations {

#if defined(__has_feature)
inline constexpr bool kThreadSanitizer = __has_feature(thread_sanitizer);
#elif defined(__SANITIZE_THREAD__)
inline constexpr bool kThreadSanitizer = true;
#else
inline constexpr bool kThreadSanitizer = false;
#endif

inline constexpr unsigned kTryLock = 1U << 4;
inline constexpr unsigned kTryLockFailed = 1U << 5;

inline void beforeLock([[maybe_unused]] void* lock) {
  if constexpr (kThreadSanitizer) __tsan_mutex_pre_lock(lock, 0);
}
inline void afterLock([[maybe_unused]] void* lock) {
  if constexpr (kThreadSanitizer) __tsan_mutex_post_lock(lock, 0, 0);
}
inline void beforeTryLock([[maybe_unused]] void* lock) {
  if constexpr (kThreadSanitizer) __tsan_mutex_pre_lock(lock, kTryLock);
}
inline void afterTryLock([[maybe_unused]] void* lock, [[maybe_unused]] bool taken) {
  if constexpr (kThreadSanitizer) __tsan_mutex_post_lock(lock, taken ? kTryLock : kTryLock | kTryLockFailed, 0);
}
inline void beforeUnlock([[maybe_unused]] void* lock) {
  if constexpr (kThreadSanitizer) __tsan_mutex_pre_unlock(lock, 0);
}
inline void afterUnlock([[maybe_unused]] void* lock) {
  if constexpr (kThreadSanitizer) __tsan_mutex_post_unlock(lock, 0);
}

}  // namespace lock_annotations
}  // namespace platform
}  // namespace havrin
