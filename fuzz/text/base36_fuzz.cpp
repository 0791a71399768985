// SPDX-License-Identifier: Apache-2.0
// Reading base-36 text: takes what the standard library takes whole, and what is written from it reads back.
#include <HavrinFoundation/text/base36.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace {

void require(bool right) {
  if (!right) std::abort();
}

// from_chars knows no plus, and a minus behind one would be a second sign.
std::optional<std::int64_t> readByFromChars(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 36);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto integer = havrin::base36ValueAsBase10(text);
  require(integer == readByFromChars(text));
  if (integer) require(havrin::base36ValueAsBase10(havrin::base36Value(*integer)) == integer);
  return 0;
}
