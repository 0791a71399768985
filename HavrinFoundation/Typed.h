// SPDX-License-Identifier: Apache-2.0
// Every typed form on standard types and the library's own value types: what the library HavrinFoundation::Typed has.
// No class, no message and no run loop comes with it; HavrinFoundation.h has those too.
#pragma once

#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/dates/zero_uuid.h>
#include <HavrinFoundation/frame/locked.h>
#include <HavrinFoundation/frame/unfair_lock.h>
#include <HavrinFoundation/links/utm_parameters.h>
#include <HavrinFoundation/platform/decoding/json_decoder.h>
#include <HavrinFoundation/platform/decoding/property_list_decoder.h>
#include <HavrinFoundation/runtime/clamp.h>
#include <HavrinFoundation/runtime/lenient_decoding.h>
#include <HavrinFoundation/text/base36.h>
#include <HavrinFoundation/text/character_sets.h>
#include <HavrinFoundation/text/friendly_number.h>
#include <HavrinFoundation/text/hex.h>
#include <HavrinFoundation/text/sha256.h>
#include <HavrinFoundation/text/string_helpers.h>
