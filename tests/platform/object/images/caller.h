// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <HavrinFoundation/platform/object/object.h>

#include <cstdint>
#include <string>

#define CALLER_EXPORT __attribute__((visibility("default")))

CALLER_EXPORT std::string greetFromCaller(havrin::NSObject* object);
CALLER_EXPORT std::int64_t seatsFromCaller(havrin::NSObject* object);
CALLER_EXPORT havrin::NSObject* privateClassOfCaller();
CALLER_EXPORT const void* selectorKeyFromCaller();
