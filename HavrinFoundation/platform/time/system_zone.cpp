// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/system_zone.h>

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/time/text_cache.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <filesystem>
#include <map>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

using std::filesystem::path;

/// Names of one zone, which is called GMT here whether or not there are zone files.
constexpr std::array<std::string_view, 9> kNamesOfGmt = {"GMT",       "UTC",  "UCT",   "Zulu", "Universal",
                                                         "Greenwich", "GMT0", "GMT+0", "GMT-0"};

bool isNameOfGmt(std::string_view name) {
  if (name.substr(0, 4) == "Etc/") name.remove_prefix(4);
  return std::find(kNamesOfGmt.begin(), kNamesOfGmt.end(), name) != kNamesOfGmt.end();
}

/// Whether `name` is a relative path that stays below the folder of the zone files.
bool isPlainName(std::string_view name) {
  if (name.empty() || name.size() > NAME_MAX || name.find('\0') != name.npos) return false;
  for (std::size_t start = 0; start <= name.size();) {
    const std::size_t end = std::min(name.find('/', start), name.size());
    const std::string_view part = name.substr(start, end - start);
    if (part.empty() || part == "." || part == "..") return false;
    start = end + 1;
  }
  return true;
}

/// The state of the system's zone: the text of the link, and the file that it leads to.
struct SystemZoneState {
  bool present = false;
  std::string link;  // empty where the system's zone is a file
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t changedSeconds = 0;
  std::int64_t changedNanoseconds = 0;

  friend bool operator==(const SystemZoneState&, const SystemZoneState&) = default;
};

SystemZoneState look(const std::string& systemLink) {
  SystemZoneState state;
  struct stat status {};
  if (stat(systemLink.c_str(), &status) == 0) {
    state = {true, "", status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
  }
  std::array<char, PATH_MAX> target;
  if (const ssize_t length = readlink(systemLink.c_str(), target.data(), target.size()); length > 0) {
    state.link.assign(target.data(), static_cast<std::size_t>(length));
  }
  return state;
}

/// Every zone that was read, and the system's zone as it was last seen. Never destroyed: rules are handed out for good.
class ZoneStore {
 public:
  const ZoneRules& gmt() const { return gmt_; }
  const ZoneRules* named(std::string_view name);
  const ZoneRules& fromVariable(std::string_view variable);
  const ZoneRules& system();
  void lookAgain();
  ZonePaths exchangePaths(ZonePaths paths);

 private:
  static constexpr std::int64_t kNever = -1;

  const ZoneRules* namedLocked(std::string_view name) HAVRIN_THREAD_SAFETY(requires_capability(lock_));
  const ZoneRules& atPathLocked(const path& start) HAVRIN_THREAD_SAFETY(requires_capability(lock_));
  const ZoneRules& inFileLocked(const path& file) HAVRIN_THREAD_SAFETY(requires_capability(lock_));

  const ZoneRules gmt_;
  os_unfair_lock lock_;
  ZonePaths paths_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));
  std::map<std::string, const ZoneRules*> named_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));  // by path
  std::map<std::string, const ZoneRules*> files_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));  // by path and state
  std::size_t filesRead_ HAVRIN_THREAD_SAFETY(guarded_by(lock_)) = 0;
  SystemZoneState state_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));
  std::atomic<std::int64_t> lastTick_{kNever};
  std::atomic<const ZoneRules*> system_{&gmt_};
};

const ZoneRules* ZoneStore::named(std::string_view name) {
  if (isNameOfGmt(name)) return &gmt_;
  const UnfairLockGuard guard(lock_);
  return namedLocked(name);
}

const ZoneRules* ZoneStore::namedLocked(std::string_view name) {
  if (isNameOfGmt(name)) return &gmt_;
  if (!isPlainName(name)) return nullptr;
  std::string file = paths_.zones + '/' + std::string(name);
  if (const auto known = named_.find(file); known != named_.end()) return known->second;
  std::unique_ptr<const ZoneRules> rules = ZoneRules::read(file, std::string(name));
  if (rules == nullptr) return nullptr;
  return named_.emplace(std::move(file), rules.release()).first->second;
}

/// The zone at the end of the links that begin at `start`: a name as soon as they lead below the zone files' folder,
/// otherwise the rules of the file at their end.
const ZoneRules& ZoneStore::atPathLocked(const path& start) {
  constexpr int kMaxLinks = 40;  // as many as the system follows
  const std::string folder = paths_.zones + '/';
  path place = start.lexically_normal();
  for (int links = 0; links < kMaxLinks; ++links) {
    if (const std::string& text = place.native(); text.compare(0, folder.size(), folder) == 0) {
      if (const ZoneRules* rules = namedLocked(std::string_view(text).substr(folder.size()))) return *rules;
    }
    std::error_code isNoLink;
    const path target = std::filesystem::read_symlink(place, isNoLink);
    if (isNoLink) return inFileLocked(place);
    place = (place.parent_path() / target).lexically_normal();
  }
  return gmt_;
}

const ZoneRules& ZoneStore::inFileLocked(const path& file) {
  const SystemZoneState state = look(file.native());
  if (!state.present) return gmt_;
  std::string key = file.native() + ' ' + std::to_string(state.device) + ' ' + std::to_string(state.inode) + ' ' +
                    std::to_string(state.changedSeconds) + '.' + std::to_string(state.changedNanoseconds);
  if (const auto known = files_.find(key); known != files_.end()) return *known->second;
  // cctz caches zones by path: a changed file is read under a new spelling of its path, whose slashes and dots write
  // this number in binary.
  std::string spelling;
  for (std::size_t bits = ++filesRead_; bits != 0; bits >>= 1) spelling += bits % 2 == 0 ? "/" : "/.";
  const ZoneRules* rules = ZoneRules::read(spelling + file.native(), "").release();
  return *files_.emplace(std::move(key), rules == nullptr ? &gmt_ : rules).first->second;
}

const ZoneRules& ZoneStore::fromVariable(std::string_view variable) {
  if (!variable.empty() && variable.front() == ':') variable.remove_prefix(1);
  if (variable.empty() || isNameOfGmt(variable)) return gmt_;
  const UnfairLockGuard guard(lock_);
  if (variable.front() == '/') return atPathLocked(path(variable));
  const ZoneRules* rules = namedLocked(variable);
  return rules == nullptr ? gmt_ : *rules;
}

const ZoneRules& ZoneStore::system() {
  const std::int64_t tick = coarseTick();
  // The tick is stored after the rules, so that who sees it sees them. Between two ticks the link is not looked at.
  if (lastTick_.load(std::memory_order_acquire) == tick) return *system_.load(std::memory_order_relaxed);
  const UnfairLockGuard guard(lock_);
  SystemZoneState state = look(paths_.systemLink);
  if (lastTick_.load(std::memory_order_relaxed) == kNever || state != state_) {
    state_ = std::move(state);
    system_.store(state_.present ? &atPathLocked(paths_.systemLink) : &gmt_, std::memory_order_relaxed);
  }
  lastTick_.store(tick, std::memory_order_release);
  return *system_.load(std::memory_order_relaxed);
}

void ZoneStore::lookAgain() {
  const UnfairLockGuard guard(lock_);  // a look that is under way must not count as the new one
  lastTick_.store(kNever, std::memory_order_release);
}

ZonePaths ZoneStore::exchangePaths(ZonePaths paths) {
  const UnfairLockGuard guard(lock_);
  lastTick_.store(kNever, std::memory_order_release);
  return std::exchange(paths_, std::move(paths));
}

ZoneStore& store() {
  static ZoneStore* const zones = new ZoneStore;
  return *zones;
}

constinit TextCache<const ZoneRules*> variables;

}  // namespace

ZonePaths setZonePaths(ZonePaths paths) {
  ZonePaths former = store().exchangePaths(std::move(paths));
  variables.forget();
  return former;
}

const ZoneRules& gmtRules() { return store().gmt(); }

const ZoneRules* rulesNamed(std::string_view name) { return store().named(name); }

const ZoneRules& currentRules(const char* zoneVariable) {
  if (zoneVariable == nullptr) return store().system();
  return *variables.get(zoneVariable, [](std::string_view text) { return &store().fromVariable(text); });
}

void forgetSystemZone() {
  store().lookAgain();
  variables.forget();
}

}  // namespace platform
}  // namespace havrin
