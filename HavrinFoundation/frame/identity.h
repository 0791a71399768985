// SPDX-License-Identifier: Apache-2.0
// What the library is, for its loader and for tools that search files.
//
//   HavrinFoundationVersionNumber         1.0
//
// `what libHavrinFoundation.so` prints "PROGRAM:HavrinFoundation  PROJECT:Havrin-1".
#pragma once

#include <HavrinFoundation/platform/export.h>

namespace havrin {

/// The project's version. Exported under this unadorned name.
extern HAVRIN_EXPORT const double HavrinFoundationVersionNumber __asm__("HavrinFoundationVersionNumber");

/// The identification text with its "@(#)" marker, a line feed and a zero byte. Exported under this unadorned name.
extern HAVRIN_EXPORT const unsigned char HavrinFoundationVersionString[48] __asm__("HavrinFoundationVersionString");

}  // namespace havrin
