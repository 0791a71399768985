// SPDX-License-Identifier: Apache-2.0
// Hexadecimal text: reads back to the bytes, whichever body wrote it.
#include <HavrinFoundation/platform/base/wide_instructions.h>
#include <HavrinFoundation/text/hex.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

namespace {

void require(bool right) {
  if (!right) std::abort();
}

std::size_t digit(char c) { return std::string_view("0123456789abcdef").find(c); }

void requireReadsBack(const std::string& text, std::span<const std::uint8_t> bytes) {
  require(text.size() == 2 * bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) require(digit(text[2 * i]) * 16 + digit(text[2 * i + 1]) == bytes[i]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using havrin::detail::WideInstructions;
  const std::span bytes(data, size);
  for (const auto body : {WideInstructions::absent, WideInstructions::unknown}) {
    havrin::detail::wideInstructions = body;
    requireReadsBack(havrin::hexString(std::as_bytes(bytes)), bytes);
  }
  return 0;
}
