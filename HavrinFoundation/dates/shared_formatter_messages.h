// SPDX-License-Identifier: Apache-2.0
// NSDateFormatter(HavrinFoundation): the shared formatter as a message.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/ns_date_formatter.h>

namespace havrin {

/// As `rfc1123<NSDateFormatter>()`, also when sent to a subclass.
template <>
struct platform::ClassMessage<NSDateFormatter, "hav_rfc1123Formatter"> : Signature<Strong<NSDateFormatter>()> {};

}  // namespace havrin
