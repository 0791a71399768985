// The whole library in one include.
#pragma once

#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/colours/colour_arithmetic.h>
#include <HavrinFoundation/colours/colour_arithmetic_messages.h>
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/colours/hex_codes_messages.h>
#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/dates/zero_uuid.h>
#include <HavrinFoundation/frame/identity.h>
#include <HavrinFoundation/frame/locked.h>
#include <HavrinFoundation/frame/log.h>
#include <HavrinFoundation/frame/main_queue.h>
#include <HavrinFoundation/frame/test_flag.h>
#include <HavrinFoundation/frame/test_flag_messages.h>
#include <HavrinFoundation/frame/unfair_lock.h>
#include <HavrinFoundation/frame/unfair_lock_messages.h>
#include <HavrinFoundation/links/utm_parameters.h>
#include <HavrinFoundation/runtime/casts_messages.h>
#include <HavrinFoundation/runtime/clamp.h>
#include <HavrinFoundation/text/base36.h>
#include <HavrinFoundation/text/character_sets.h>
#include <HavrinFoundation/text/friendly_number.h>
#include <HavrinFoundation/text/hex.h>
#include <HavrinFoundation/text/sha256.h>
#include <HavrinFoundation/text/string_helpers.h>
