// Whether the processor has the wide instructions (AVX2) that a few loops over bytes have a second body for. For
// sources only: no public header includes it.
//
//   if (hasWideInstructions()) return encodeWide(bytes);
//   return encodePlain(bytes);
//
// The wide bodies stand beside the plain ones, carry the target attribute themselves, and give the same answers; the
// library is built for any processor of its kind.
#pragma once

#include <atomic>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace havrin::inline platform::detail {

enum class WideInstructions : signed char { unknown, absent, present };

/// What was found at first use. A test writes `absent` to run the plain bodies.
inline constinit std::atomic<WideInstructions> wideInstructions{WideInstructions::unknown};

#if defined(__x86_64__)
/// Asks the processor for AVX2, and the system whether it keeps the wide registers across a switch of threads.
inline bool processorHasWideInstructions() noexcept {
  unsigned a = 0, b = 0, c = 0, d = 0;
  constexpr unsigned kSystemSavesRegisters = 1u << 27, kAvx2 = 1u << 5, kSseAndAvxState = 0b110;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & kSystemSavesRegisters) == 0) return false;
  unsigned low, high;
  asm("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  if ((low & kSseAndAvxState) != kSseAndAvxState) return false;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & kAvx2) != 0;
}
#else
inline bool processorHasWideInstructions() noexcept { return false; }
#endif

[[nodiscard]] inline bool hasWideInstructions() noexcept {
  const WideInstructions found = wideInstructions.load(std::memory_order_relaxed);
  if (found != WideInstructions::unknown) [[likely]]
    return found == WideInstructions::present;
  const bool present = processorHasWideInstructions();
  wideInstructions.store(present ? WideInstructions::present : WideInstructions::absent, std::memory_order_relaxed);
  return present;
}

}  // namespace havrin::inline platform::detail
