// SPDX-License-Identifier: Apache-2.0
// Reading a keyed archive without secure coding, so that objects whose classes do not adopt it come back too.
//
//   send<"insecureUnarchivedObjectOfClass:fromData:error:">(classOf<NSKeyedUnarchiver>(), classOf<NSArray>(), data, &why)
//   send<"insecureUnarchivedObjectOfClasses:fromData:error:">(classOf<NSKeyedUnarchiver>(), classes, data, nullptr)
//
// Any class that archives know may come, at the root as well as inside: the classes named say what the caller expects,
// and are not enforced. Only for archives that the program itself has written.
// Left out: a typed form; archives hold objects.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/object/message.h>

namespace havrin {
inline namespace platform {

class NSData;

/// The outermost object of the archive in `data`, the one under NSKeyedArchiveRootObjectKey.
/// Null when: data is null; it is not a keyed archive, and then `error`, if there is one, says why; the object is null,
/// or cannot be decoded, and then `error` stays as it is.
/// Sent on the way: `initForReadingFromData`, `setRequiresSecureCoding`, and `decodeObjectOfClass` or
/// `decodeObjectOfClasses` of a new instance of the receiver. Cost: linear in the archive. Threads: any.
template <>
struct ClassMessage<NSKeyedUnarchiver, "insecureUnarchivedObjectOfClass:fromData:error:">
    : Signature<Strong<NSObject>(Class cls, NSData* data, Strong<NSError>* error)> {};
template <>
struct ClassMessage<NSKeyedUnarchiver, "insecureUnarchivedObjectOfClasses:fromData:error:">
    : Signature<Strong<NSObject>(NSSet* classes, NSData* data, Strong<NSError>* error)> {};

}  // namespace platform
}  // namespace havrin
