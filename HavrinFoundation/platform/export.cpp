// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/export.h>
