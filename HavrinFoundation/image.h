// SPDX-License-Identifier: Apache-2.0
// The library as the runtime sees it. Every header that declares messages refers to it, so that a program that links
// the static library and sends messages gets all of its methods without linker options. A static program of typed forms
// alone gets neither the methods nor the library's identification string (frame/identity.h).
#pragma once

#include <HavrinFoundation/platform/object/category.h>

namespace havrin {

/// Every category of the library, attached when it is loaded.
extern HAVRIN_EXPORT const Image kHavrinFoundation;

namespace {
[[gnu::used]] const Image* const kThisImageIsNeeded = &kHavrinFoundation;
}  // namespace

}  // namespace havrin
