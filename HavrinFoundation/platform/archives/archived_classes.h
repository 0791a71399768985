// SPDX-License-Identifier: Apache-2.0
// The registry of archived classes by name, and the archived forms of the layer's own classes. Internal to archives/.
#pragma once

#include <HavrinFoundation/platform/documents/decoding_error.h>
#include <HavrinFoundation/platform/object/class.h>

#include <optional>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

class ArchiveReader;
class ArchiveWriter;
class NSSet;

/// The archived form of one of the layer's classes: how its objects are encoded and decoded.
struct ArchivedForm {
  std::string_view name;
  ClassObject* (*cls)();
  /// Makes an object from the current values of `reader`. Null when: that failed; the reader has the error.
  Strong<NSObject> (*decode)(ArchiveReader& reader);
  /// Adds the values of `object`, which is of the class, to the current object of `writer`.
  void (*encode)(const NSObject& object, ArchiveWriter& writer);
};

/// The form of a class. Null when: it is not one of the layer's own classes.
[[nodiscard]] const ArchivedForm* archivedFormForName(std::string_view name);
[[nodiscard]] const ArchivedForm* archivedFormForClass(const ClassObject* cls);

/// The name under which a class of the application is encoded: the first one registered that is still its own.
/// Empty when: it has none.
/// Cost: linear in the number of registered names.
[[nodiscard]] std::optional<std::string> archivedNameForClass(Class cls);

/// Whether objects of a class of the application can be decoded. The error text continues "class <name> ".
[[nodiscard]] Decoded<void> checkReadable(const ClassObject& cls);

/// The classes allowed under secure coding: one class, a set of classes, all of the layer's own classes.
struct AllowedClasses {
  Class cls;
  const NSSet* classes = nullptr;
  bool layersOwn = false;

  [[nodiscard]] bool permits(const ClassObject* given) const;
};

}  // namespace platform
}  // namespace havrin
