// SPDX-License-Identifier: Apache-2.0
// The eight rooms in one include, and of the layer what their users need beside them: objects and exceptions, queues and
// the run loop, decoders and archives.
#pragma once

#include <HavrinFoundation/Typed.h>
#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/collections/collection_helpers_messages.h>
#include <HavrinFoundation/collections/set_blocks_messages.h>
#include <HavrinFoundation/colours/colour_arithmetic.h>
#include <HavrinFoundation/colours/colour_arithmetic_messages.h>
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/colours/hex_codes_messages.h>
#include <HavrinFoundation/dates/date_arithmetic_messages.h>
#include <HavrinFoundation/dates/shared_formatter.h>
#include <HavrinFoundation/dates/shared_formatter_messages.h>
#include <HavrinFoundation/dates/zero_uuid_messages.h>
#include <HavrinFoundation/frame/identity.h>
#include <HavrinFoundation/frame/log.h>
#include <HavrinFoundation/frame/main_queue.h>
#include <HavrinFoundation/frame/rate_limits_messages.h>
#include <HavrinFoundation/frame/test_flag.h>
#include <HavrinFoundation/frame/test_flag_messages.h>
#include <HavrinFoundation/frame/unfair_lock_messages.h>
#include <HavrinFoundation/links/app_identity.h>
#include <HavrinFoundation/links/app_identity_messages.h>
#include <HavrinFoundation/observation/key_value_observation_messages.h>
#include <HavrinFoundation/observation/responder_observations_messages.h>
#include <HavrinFoundation/platform/application/process_info.h>
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/platform/foundation/ns_url.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/observing/key_value_coding.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>
#include <HavrinFoundation/runtime/casts_messages.h>
#include <HavrinFoundation/runtime/insecure_unarchiving_messages.h>
#include <HavrinFoundation/text/attributed_strings.h>
#include <HavrinFoundation/text/attributed_strings_messages.h>
#include <HavrinFoundation/text/base36_messages.h>
#include <HavrinFoundation/text/character_sets_messages.h>
#include <HavrinFoundation/text/friendly_number_messages.h>
#include <HavrinFoundation/text/hex_messages.h>
#include <HavrinFoundation/text/sha256_messages.h>
#include <HavrinFoundation/text/string_helpers_messages.h>
