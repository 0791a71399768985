// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/frame/log.h>

namespace havrin {

constinit const char* kHLogSubsystem = "com.havrin";

os_log_t hlog_create_with_category(const char* category) { return os_log_create(kHLogSubsystem, category); }

}  // namespace havrin
