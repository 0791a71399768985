// The one macro of the public headers: what the shared libraries show.
#pragma once

#define HAVRIN_EXPORT __attribute__((visibility("default")))
