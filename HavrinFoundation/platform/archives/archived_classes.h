// Which classes archives know, by which names, and how the layer's own stand in an archive. Internal to archives/.
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

/// The form of one of the layer's classes: what is written of an object, and made of what was written.
struct ArchivedForm {
  std::string_view name;
  ClassObject* (*cls)();
  /// Makes the object whose values `reader` stands at. Null when: it could not; the reader knows why.
  Strong<NSObject> (*decode)(ArchiveReader& reader);
  /// Adds the values of `object`, which is of the class, to what `writer` stands at.
  void (*encode)(const NSObject& object, ArchiveWriter& writer);
};

/// Null when: the layer has no such class.
[[nodiscard]] const ArchivedForm* archivedFormForName(std::string_view name);
[[nodiscard]] const ArchivedForm* archivedFormForClass(const ClassObject* cls);

/// The name under which archives know a class of the application: the first that it still has. Empty when: they do not.
/// Cost: linear in the classes that have been named.
[[nodiscard]] std::optional<std::string> archivedNameForClass(Class cls);

/// Whether objects of a class of the application can be read. The error is to be said after the name of the class.
[[nodiscard]] Decoded<void> checkReadable(const ClassObject& cls);

/// The classes that may come while secure coding is required: one, a set of them, all that are the layer's own.
struct AllowedClasses {
  Class cls;
  const NSSet* classes = nullptr;
  bool layersOwn = false;

  [[nodiscard]] bool permits(const ClassObject* given) const;
};

}  // namespace platform
}  // namespace havrin
