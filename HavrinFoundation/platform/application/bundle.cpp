// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/application/bundle.h>

#include <HavrinFoundation/platform/archives/property_list_objects.h>
#include <HavrinFoundation/platform/base/file_bytes.h>
#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/documents/property_list.h>

#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

constexpr std::size_t kLargestInformation = std::size_t{16} << 20;

// The canonical path of a folder, with links resolved, so that each folder has one bundle.
std::optional<std::string> folderAt(std::string_view path) {
  if (path.empty()) return std::nullopt;  // libc++ takes it for the current folder
  std::error_code failed;
  const std::filesystem::path folder = std::filesystem::canonical(path, failed);
  if (failed || !std::filesystem::is_directory(folder, failed)) return std::nullopt;
  return folder.string();
}

std::string programFolder() {
  std::error_code failed;
  return std::filesystem::read_symlink("/proc/self/exe", failed).parent_path().string();
}

// The bundles of the process. Never destroyed.
struct Bundles {
  os_unfair_lock lock;
  std::unordered_map<std::string, Strong<NSBundle>> byFolder HAVRIN_THREAD_SAFETY(guarded_by(lock));
  Strong<NSBundle> installedMain HAVRIN_THREAD_SAFETY(guarded_by(lock));  // null: the program's own
};

Bundles& bundles() {
  static Bundles* const all = new Bundles;
  return *all;
}

Strong<NSBundle> installedMainBundle() {
  Bundles& all = bundles();
  const UnfairLockGuard guard(all.lock);
  return all.installedMain;
}

Strong<NSBundle> bundleOfFolder(const std::string& folder) {
  Bundles& all = bundles();
  const UnfairLockGuard guard(all.lock);
  Strong<NSBundle>& bundle = all.byFolder[folder];
  if (!bundle) bundle = make<NSBundle>(folder);
  return bundle;
}

}  // namespace

// Read on first use, once.
struct NSBundle::Information {
  std::once_flag once;
  std::optional<PropertyList> list;
};

NSBundle::NSBundle() : NSBundle("") {}
NSBundle::NSBundle(std::string_view path) : path_(path), information_(new Information) {}
NSBundle::~NSBundle() { delete information_; }

Strong<NSBundle> NSBundle::mainBundle() {
  if (auto installed = installedMainBundle()) return installed;
  static NSBundle* const own = bundleOfFolder(programFolder()).detach();
  return own;
}

Strong<NSBundle> NSBundle::bundleWithPath(std::string_view path) {
  const auto folder = folderAt(path);
  if (!folder) return nullptr;
  if (auto main = installedMainBundle(); main && folderAt(main->path_) == folder) return main;
  return bundleOfFolder(*folder);
}

Strong<NSString> NSBundle::bundlePath() const { return makeString(path_); }

Strong<NSObject> NSBundle::objectForInfoDictionaryKey(const NSString* key) const {
  if (!key || path_.empty()) return nullptr;
  std::call_once(information_->once, [this] {
    const auto bytes = fileBytes(path_ + "/Info.plist", kLargestInformation);
    if (!bytes) return;
    if (auto list = readPropertyList(*bytes)) information_->list = *std::move(list);
  });
  const PropertyList* value = information_->list ? information_->list->valueForKey(utf8(*key)) : nullptr;
  return value ? objectOf(*value) : nullptr;
}

Strong<NSBundle> installMainBundle(NSBundle* bundle) {
  Bundles& all = bundles();
  const UnfairLockGuard guard(all.lock);
  return std::exchange(all.installedMain, Strong<NSBundle>(bundle));
}

template ClassObject* buildClass<NSBundle>();

}  // namespace platform
}  // namespace havrin
