// SPDX-License-Identifier: Apache-2.0
// Prints the memory that it occupies, in bytes. Each program of the benchmark is this one, linked with other libraries.
#include <cstdio>

int main() {
  std::FILE* const statm = std::fopen("/proc/self/statm", "r");
  long resident = 0;
  const bool read = statm && std::fscanf(statm, "%*d %ld", &resident) == 1;
  constexpr long kPage = 4096;
  std::printf("%ld\n", read ? resident * kPage : 0);
  return read ? 0 : 1;
}
