// SPDX-License-Identifier: Apache-2.0
#include "prompt.h"

#include <HavrinFoundation/text/character_sets.h>
#include <HavrinFoundation/text/string_helpers.h>

#include <utility>

namespace radio {

using namespace havrin;

namespace {

struct Rule {
  std::string_view label;
  std::string_view allowed;
  CharacterSet characters;
};

CharacterSet with(CharacterSet characters, std::string_view more) {
  characters.insert(more);
  return characters;
}

const Rule& ruleOf(Prompt::Kind kind) {
  static const Rule kNone{"", "", CharacterSet()};
  static const Rule kSearch{"search", "letters, digits and blanks", with(CharacterSet::alphanumerics(), " ")};
  static const Rule kNumber{"station", "the digits 0 to 9 and A to Z",
                            with(asciiAlphabet<CharacterSet>(), "0123456789")};
  static const Rule kColour{"colour", "a code such as #1F618D", with(hexadecimal<CharacterSet>(), "#")};
  switch (kind) {
    case Prompt::Kind::search:
      return kSearch;
    case Prompt::Kind::number:
      return kNumber;
    case Prompt::Kind::colour:
      return kColour;
    default:
      return kNone;
  }
}

}  // namespace

bool isSearchText(std::string_view text) {
  return containsOnlyCharacters(text, ruleOf(Prompt::Kind::search).characters);
}

std::string_view Prompt::label() const { return ruleOf(kind_).label; }

std::string_view Prompt::allowed() const { return ruleOf(kind_).allowed; }

void Prompt::open(Kind kind, std::string text) {
  kind_ = kind;
  text_ = std::move(text);
}

std::string Prompt::close() {
  kind_ = Kind::none;
  return std::exchange(text_, {});
}

bool Prompt::type(std::string_view character) {
  const bool isAllowed = containsOnlyCharacters(character, ruleOf(kind_).characters);
  if (isAllowed) text_ += character;
  return isAllowed;
}

void Prompt::erase() {
  while (!text_.empty() && (static_cast<unsigned char>(text_.back()) & 0xC0) == 0x80) text_.pop_back();
  if (!text_.empty()) text_.pop_back();
}

}  // namespace radio
