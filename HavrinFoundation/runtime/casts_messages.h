// SPDX-License-Identifier: Apache-2.0
// NSObject(Cast): an object as an instance of a class, or as one that conforms to a protocol, or null. Messages alone.
//
//   send<"ifInstance:">(classOf<NSString>(), object)                Strong<NSString>, or null
//   send<"ifConformance:">(station, protocolOf<Playable>())         the station itself, or null
//   send<"isAnyKindOfClass:">(object, makeArray({classOf<NSString>(), classOf<NSNumber>()}))
//
// Answered by every object and every class. What comes back is the object that went in, not copied.
// `isKindOfClass` and `conformsToProtocol` are asked, so that an override of them decides. An object that claims a class
// without being of it comes back as that class: only messages may be sent to it.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/fast_enumeration.h>
#include <HavrinFoundation/platform/object/members.h>

namespace havrin {
inline namespace platform {

/// The object when it is an instance of the receiving class or of a subclass; null otherwise, and for null.
template <>
struct ClassMessage<NSObject, "ifInstance:"> : Signature<Strong<Self>(NSObject*)> {};
/// The receiver when it conforms to the protocol; null otherwise.
template <>
struct Message<NSObject, "ifConformance:"> : Signature<Strong<Self>(const AnyProtocol&)> {};
/// Whether the receiver is an instance of one of the classes, or of a subclass of one. The collection is asked in its own
/// order until one fits; false when it is empty or null.
/// Throws: NSException (Generic) when the collection changes meanwhile, NSException (InvalidArgument) for an element that
/// is not a class.
template <>
struct Message<NSObject, "isAnyKindOfClass:"> : Signature<bool(NSFastEnumeration*)> {};

}  // namespace platform
}  // namespace havrin
