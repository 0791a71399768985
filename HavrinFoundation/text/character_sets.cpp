// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/character_sets.h>

#include <string_view>

namespace havrin {

namespace {

CharacterSet alphabetDigitsAnd(std::string_view more) {
  CharacterSet set;
  set.formUnion(detail::asciiAlphabetSet());
  set.insert("0123456789");
  set.insert(more);
  return set;
}

}  // namespace

const CharacterSet& detail::hexadecimalSet() {
  static const auto& set = *new CharacterSet("0123456789abcdefABCDEF");
  return set;
}

const CharacterSet& detail::asciiAlphabetSet() {
  static const auto& set = *new CharacterSet("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ");
  return set;
}

CharacterSet& detail::urlSchemeAllowedSet() {
  static auto& set = *new CharacterSet(alphabetDigitsAnd("+-."));
  return set;
}

CharacterSet& detail::validSubhavrinNameSet() {
  static auto& set = *new CharacterSet(alphabetDigitsAnd("_"));
  return set;
}

}  // namespace havrin
