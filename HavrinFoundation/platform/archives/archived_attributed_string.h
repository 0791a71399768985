// SPDX-License-Identifier: Apache-2.0
// Encoding and decoding of attributed strings; archived_forms.cpp describes the format. Internal to archives/.
#pragma once

#include <HavrinFoundation/platform/object/reference.h>

namespace havrin {
inline namespace platform {

class ArchiveReader;
class ArchiveWriter;
class NSObject;

/// See ArchivedForm. ClassType is NSAttributedString or NSMutableAttributedString.
template <class ClassType>
[[nodiscard]] Strong<NSObject> decodeAttributedString(ArchiveReader& reader);
void encodeAttributedString(const NSObject& object, ArchiveWriter& writer);

}  // namespace platform
}  // namespace havrin
