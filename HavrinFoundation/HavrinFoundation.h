// The whole library in one include.
#pragma once

#include <HavrinFoundation/frame/identity.h>
#include <HavrinFoundation/frame/locked.h>
#include <HavrinFoundation/frame/log.h>
#include <HavrinFoundation/frame/unfair_lock.h>
#include <HavrinFoundation/frame/unfair_lock_messages.h>
#include <HavrinFoundation/links/utm_parameters.h>
