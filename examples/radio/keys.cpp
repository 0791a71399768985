// SPDX-License-Identifier: Apache-2.0
#include "keys.h"

#include <HavrinFoundation/platform/unicode/unicode.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace radio {

namespace {

// What terminals send for a function key, after Escape.
constexpr std::pair<std::string_view, Key> kSequences[] = {
    {"[A", Key::up},        {"OA", Key::up},   {"[B", Key::down}, {"OB", Key::down},  {"[5~", Key::pageUp},
    {"[6~", Key::pageDown}, {"[H", Key::home}, {"OH", Key::home}, {"[1~", Key::home}, {"[7~", Key::home},
    {"[F", Key::end},       {"OF", Key::end},  {"[4~", Key::end}, {"[8~", Key::end}};

constexpr std::pair<char, Key> kControls[] = {{'\r', Key::enter}, {'\n', Key::enter},   {'\t', Key::tab},
                                              {'\b', Key::erase}, {'\x7f', Key::erase}, {'\x04', Key::endOfInput}};

// The length of the sequence that follows Escape at the start of `bytes`; 0 when it is not complete.
std::size_t sequenceLength(std::string_view bytes) {
  if (bytes.size() < 2) return 0;
  if (bytes[1] == 'O') return bytes.size() < 3 ? 0 : 3;
  if (bytes[1] != '[') return 1;  // Escape, then another key
  const auto* const last =
      std::find_if(bytes.begin() + 2, bytes.end(), [](char unit) { return unit >= 0x40 && unit <= 0x7E; });
  return last == bytes.end() ? 0 : static_cast<std::size_t>(last - bytes.begin()) + 1;
}

std::size_t characterLength(char first) {
  const auto byte = static_cast<unsigned char>(first);
  return byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

Keystroke keyOf(std::string_view bytes) {
  if (bytes[0] == '\x1b') {
    if (bytes.size() == 1) return {Key::escape, {}};
    const auto* const found = std::find_if(std::begin(kSequences), std::end(kSequences),
                                           [&](const auto& row) { return row.first == bytes.substr(1); });
    return {found == std::end(kSequences) ? Key::unknown : found->second, {}};
  }
  const auto* const control =
      std::find_if(std::begin(kControls), std::end(kControls), [&](const auto& row) { return row.first == bytes[0]; });
  if (control != std::end(kControls)) return {control->second, {}};
  if (static_cast<unsigned char>(bytes[0]) < 0x20) return {Key::unknown, {}};
  return {Key::text, std::string(bytes)};
}

}  // namespace

std::vector<Keystroke> KeyReader::read(std::string_view bytes) {
  rest_ += bytes;
  std::vector<Keystroke> keys;
  std::string_view left = rest_;
  while (!left.empty()) {
    std::size_t length = left[0] == '\x1b' ? sequenceLength(left) : characterLength(left[0]);
    if (length == 0 || length > left.size()) break;
    if (left[0] != '\x1b') length = havrin::scalarAt(left, 0).length;  // shorter when it is not well-formed
    keys.push_back(keyOf(left.substr(0, length)));
    left.remove_prefix(length);
  }
  rest_ = std::string(left);
  return keys;
}

std::vector<Keystroke> KeyReader::finish() {
  const std::string rest = std::exchange(rest_, {});
  if (rest.empty()) return {};
  return {keyOf(rest)};
}

}  // namespace radio
