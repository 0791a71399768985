// SPDX-License-Identifier: Apache-2.0
// The whole library, for the ways of compiling it that tests/CMakeLists.txt tries.
#include <HavrinFoundation/HavrinFoundation.h>
