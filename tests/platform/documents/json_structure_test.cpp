// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/documents/json_structure.h>

namespace {

using namespace havrin;

// The same, a character at a time. Empty for an error.
std::vector<std::uint32_t> tokensOf(std::string_view text) {
  std::vector<std::uint32_t> tokens;
  bool isInString = false;
  bool isBehindBare = false;
  bool isEscaped = false;
  for (std::uint32_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool isQuote = c == '"' && !isEscaped;
    isEscaped = c == '\\' && !isEscaped;
    if (isInString) {
      if (static_cast<unsigned char>(c) < 0x20) return {};
      isInString = !isQuote;
      isBehindBare = false;
      continue;
    }
    const bool isMark = std::string_view("{}[]:,").find(c) != std::string_view::npos;
    const bool isSpace = std::string_view(" \n\r\t").find(c) != std::string_view::npos;
    if (isMark || (!isSpace && !isBehindBare)) tokens.push_back(i);
    isInString = isQuote;
    isBehindBare = !isMark && !isSpace && !isQuote;
  }
  if (isInString || tokens.empty()) return {};
  tokens.push_back(static_cast<std::uint32_t>(text.size()));
  return tokens;
}

TEST(JsonStructure, FindsTheSameTokensWithAllInstructions) {
  std::vector<JsonStructure> structures;
  for (int set = 0; set <= static_cast<int>(JsonStructure::best()); ++set) {
    structures.emplace_back(static_cast<JsonStructure::Instructions>(set));
  }
  const auto expectSame = [&](std::string_view text) {
    const auto wanted = tokensOf(text);
    for (JsonStructure& structure : structures) {
      const auto found = structure.find(text);
      ASSERT_EQ(static_cast<bool>(found), !wanted.empty()) << text;
      if (found) {
        ASSERT_EQ(std::vector<std::uint32_t>(found->begin(), found->end()), wanted) << text;
      }
    }
  };
  auto random = seededGenerator();
  constexpr std::string_view kPieces[] = {"{",  "}",  "[",    "]", ":",    ",", "\"",
                                          "\"", "\\", "\\\\", "a", "12.5", " ", "\n"};
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    while (random() % 150 != 0) text += kPieces[random() % std::size(kPieces)];
    expectSame(text);
  }
  for (const std::size_t size : {1U, 31U, 32U, 63U, 64U, 65U, 128U, 200U}) {
    expectSame(std::string(size, '['));
    expectSame('"' + std::string(size, 'a') + '"');
    expectSame('"' + std::string(size, '\\') + "\", 1");
    expectSame(std::string(size, ' '));
    expectSame(std::string(size, ' ') + "\"\x1F\"");
  }
}

}  // namespace
