// SPDX-License-Identifier: Apache-2.0
// NSBundle: a folder with a program or its resources, and the values of its Info.plist.
//
//   const auto bundle = NSBundle::mainBundle();                            the folder of the program
//   bundle->objectForInfoDictionaryKey(makeString("CFBundleVersion"))      "612345"
//   NSBundle::bundleWithPath("/opt/radio") == NSBundle::mainBundle()       true where that is the program's folder
//
// Info.plist is in the folder itself, in either form of property lists.
//
// Left out: localised values, resources, loading code, identifiers, bundles of classes, bundles with a Contents folder,
// the whole dictionary at once.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// A bundle. Equal only to itself. Threads: any.
class HAVRIN_EXPORT NSBundle : public Object<NSBundle, NSObject> {
 public:
  /// A bundle without a folder and without values.
  NSBundle();
  /// A new bundle for the folder at `path`, which is not accessed yet; see bundleWithPath for shared ones.
  explicit NSBundle(std::string_view path);
  explicit NSBundle(std::nullptr_t) = delete;  // not a path
  ~NSBundle() override;

  /// The bundle of the folder of the program. Always the same object, unless installMainBundle replaces it.
  [[nodiscard]] static Strong<NSBundle> mainBundle();

  /// The bundle of the folder at `path`: one object for each folder, the main bundle for the program's folder.
  /// Result: shared; it lives until the process ends.
  /// Null when: there is no folder at `path`.
  [[nodiscard]] static Strong<NSBundle> bundleWithPath(std::string_view path);
  static Strong<NSBundle> bundleWithPath(std::nullptr_t) = delete;  // not a path

  [[nodiscard]] virtual Strong<NSString> bundlePath() const;

  /// The value of Info.plist under `key`, as strings, numbers, dates, data, arrays and dictionaries.
  /// Null when: the key is missing or null; the file is missing, not a property list, or larger than 16 MiB.
  /// Cost: the file is read by the first call.
  [[nodiscard]] virtual Strong<NSObject> objectForInfoDictionaryKey(const NSString* key) const;

 private:
  struct Information;

  const std::string path_;
  Information* const information_;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSBundle>();

/// Replaces the main bundle by `bundle`; null restores the program's own.
/// Result: the previous replacement; null if there was none.
/// Threads: any; meant for test programs.
HAVRIN_EXPORT Strong<NSBundle> installMainBundle(NSBundle* bundle);

}  // namespace platform
}  // namespace havrin
