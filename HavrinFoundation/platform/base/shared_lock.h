// SPDX-License-Identifier: Apache-2.0
// A lock that many readers or one writer hold, for tables that are read far more often than changed. Internal.
//
//   SharedLock lock;
//   const ReaderGuard guard(lock);      shared with other readers, for the length of the scope
//   const WriterGuard guard(lock);      exclusive
#pragma once

#include <HavrinFoundation/platform/base/lock_annotations.h>

#include <mutex>
#include <shared_mutex>

namespace havrin {
inline namespace platform {

// A defaulted destructor takes no annotation.
// NOLINTBEGIN(modernize-use-equals-default)
/// std::shared_mutex, which the standard library does not annotate for clang's analysis.
class HAVRIN_THREAD_SAFETY(capability("mutex")) SharedLock {
  friend class ReaderGuard;
  friend class WriterGuard;
  std::shared_mutex mutex_;
};

class HAVRIN_THREAD_SAFETY(scoped_lockable) ReaderGuard {
 public:
  explicit ReaderGuard(SharedLock& lock) HAVRIN_THREAD_SAFETY(acquire_shared_capability(lock)) : lock_(lock.mutex_) {}
  ~ReaderGuard() HAVRIN_THREAD_SAFETY(release_capability()) {}

 private:
  std::shared_lock<std::shared_mutex> lock_;
};

class HAVRIN_THREAD_SAFETY(scoped_lockable) WriterGuard {
 public:
  explicit WriterGuard(SharedLock& lock) HAVRIN_THREAD_SAFETY(acquire_capability(lock)) : lock_(lock.mutex_) {}
  ~WriterGuard() HAVRIN_THREAD_SAFETY(release_capability()) {}

 private:
  std::unique_lock<std::shared_mutex> lock_;
};
// NOLINTEND(modernize-use-equals-default)

}  // namespace platform
}  // namespace havrin
