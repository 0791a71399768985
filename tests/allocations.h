// SPDX-License-Identifier: Apache-2.0
// Allocations of the whole program, counted, and made to fail one at a time. allocations.cpp replaces operator new.
#pragma once

#include <cstdint>

namespace allocations {

/// The allocations that are not freed yet.
std::int64_t living() noexcept;
/// Lets the allocation `count` from now on fail on this thread: 0 is the next. Negative: none.
void failAt(int count) noexcept;
/// Ends that. Returns whether an allocation has failed.
bool disarm() noexcept;

}  // namespace allocations
