// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/coding_path.h>

#include <algorithm>
#include <cstdio>

namespace havrin {
inline namespace platform {
namespace {

bool isWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
         c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

bool isPlainWord(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), isWordCharacter);
}

}  // namespace

std::string CodingKey::stringValue() const { return index_ < 0 ? name_ : "Index " + std::to_string(index_); }

std::string CodingPath::description() const {
  if (keys_.empty()) return "the top level";
  std::string text;
  for (const CodingKey& key : keys_) {
    if (const auto index = key.intValue()) {
      text += '[' + std::to_string(*index) + ']';
    } else if (const std::string name = key.stringValue(); isPlainWord(name)) {
      if (!text.empty()) text += '.';
      text += name;
    } else {
      text += '[' + quotedForReading(name) + ']';
    }
  }
  return text;
}

std::string quotedForReading(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(c));
      quoted += escape;
    } else {
      quoted += c;
    }
  }
  return quoted += '"';
}

}  // namespace platform
}  // namespace havrin
