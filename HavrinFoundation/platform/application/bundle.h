// NSBundle: a folder with a program or its resources, and what its Info.plist says of it.
//
//   const auto bundle = NSBundle::mainBundle();                            the folder of the program
//   bundle->objectForInfoDictionaryKey(makeString("CFBundleVersion"))      "612345"
//   NSBundle::bundleWithPath("/opt/radio") == NSBundle::mainBundle()       true where that is the program's folder
//
// Info.plist stands in the folder itself and may be in either form of property lists.
//
// Left out: localised values, resources, loading code, identifiers, bundles of classes, bundles with a Contents folder, the
// whole dictionary at once.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/string.h>
#include <HavrinFoundation/platform/object/members.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// Equal only to itself.
/// Threads: any.
class HAVRIN_EXPORT NSBundle : public Object<NSBundle, NSObject> {
 public:
  /// A bundle of no folder, which says nothing of itself.
  NSBundle();
  /// A bundle of its own for the folder at `path`, which is not looked at yet; see bundleWithPath.
  explicit NSBundle(std::string_view path);
  explicit NSBundle(std::nullptr_t) = delete;  // not a path
  ~NSBundle() override;

  /// The bundle of the folder that the program stands in. Always the same object, but for installMainBundle.
  [[nodiscard]] static Strong<NSBundle> mainBundle();

  /// The bundle of the folder at `path`: one object for each folder, the main bundle for its own. It is kept for good.
  /// Null when: there is no folder.
  [[nodiscard]] static Strong<NSBundle> bundleWithPath(std::string_view path);
  static Strong<NSBundle> bundleWithPath(std::nullptr_t) = delete;  // not a path

  [[nodiscard]] virtual Strong<NSString> bundlePath() const;

  /// What Info.plist says under `key`, as strings, numbers, dates, data, arrays and dictionaries. The file is read once.
  /// Null when: it says nothing, for null, and for every key where the file is missing, no property list, or larger than
  /// 16 MiB.
  [[nodiscard]] virtual Strong<NSObject> objectForInfoDictionaryKey(const NSString* key) const;

 private:
  struct Information;

  const std::string path_;
  Information* const information_;
};

/// Puts `bundle` in place of the main bundle, or the program's own back when it is null.
/// Result: the bundle that was in its place before, null for the program's own.
/// Threads: any; meant for test programs.
HAVRIN_EXPORT Strong<NSBundle> installMainBundle(NSBundle* bundle);

}  // namespace platform
}  // namespace havrin
