// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/character_sets_messages.h>

namespace havrin {

namespace {

Strong<NSCharacterSet> hexadecimalSet(ClassOf<NSCharacterSet>) { return hexadecimal<NSCharacterSet>(); }
Strong<NSCharacterSet> asciiAlphabetSet(ClassOf<NSCharacterSet>) { return asciiAlphabet<NSCharacterSet>(); }
Strong<NSCharacterSet> urlSchemeAllowedSet(ClassOf<NSCharacterSet>) { return urlSchemeAllowed<NSCharacterSet>(); }
Strong<NSCharacterSet> validSubhavrinNameSet(ClassOf<NSCharacterSet>) { return validSubhavrinName<NSCharacterSet>(); }

constexpr MethodRow kClassRows[] = {
    classRow<NSCharacterSet, "hexadecimalCharacterSet", hexadecimalSet>(),
    classRow<NSCharacterSet, "asciiAlphabetCharacterSet", asciiAlphabetSet>(),
    classRow<NSCharacterSet, "h_URLSchemeAllowedCharacterSet", urlSchemeAllowedSet>(),
    classRow<NSCharacterSet, "validSubhavrinNameCharacterSet", validSubhavrinNameSet>(),
};

}  // namespace

extern constinit const Category kNamedCharacterSets{classObject<NSCharacterSet>, "HavrinFoundation", {}, kClassRows};

}  // namespace havrin
