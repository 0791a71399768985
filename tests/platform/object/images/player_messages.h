// SPDX-License-Identifier: Apache-2.0
// The messages of a static library, as the opening comment of category.h shows: the header refers to the image, so that
// the linker keeps it.
#pragma once

#include <HavrinFoundation/platform/object/category.h>
#include <HavrinFoundation/platform/object/string.h>

extern const havrin::Image kPlayerImage;
namespace {
[[gnu::used]] const havrin::Image* const kPlayerImageIsNeeded = &kPlayerImage;
}

template <>
struct havrin::Message<havrin::NSObject, "img_play"> : Signature<Strong<NSString>()> {};
