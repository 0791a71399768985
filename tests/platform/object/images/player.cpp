// SPDX-License-Identifier: Apache-2.0
// The static library.
#include "player_messages.h"

using namespace havrin;

namespace {

Strong<NSString> play(NSObject&) { return makeString("playing"); }

constexpr MethodRow kRows[] = {row<NSObject, "img_play", play>()};
constinit const Category kPlayer{classObject<NSObject>, "Player", kRows, {}};
const Category* const kCategories[] = {&kPlayer};

}  // namespace

const Image kPlayerImage{
    .name = "player", .identification = nullptr, .strings = {}, .categories = kCategories, .initialisers = {}};

namespace {
const Loader kLoader{kPlayerImage};
}
