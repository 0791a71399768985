// SPDX-License-Identifier: Apache-2.0
#include "file_watch.h"

#include <sys/stat.h>
#include <utility>

namespace radio {

FileWatch::FileWatch(std::vector<std::string> paths) : paths_(std::move(paths)), settled_(stamps()), last_(settled_) {}

bool FileWatch::look() {
  Stamps now = stamps();
  const bool isSteady = now == last_;
  last_ = now;
  if (!isSteady || now == settled_) return false;
  settled_ = std::move(now);
  return true;
}

FileWatch::Stamps FileWatch::stamps() const {
  Stamps stamps;
  for (const std::string& path : paths_) {
    struct stat facts {};
    const bool isThere = path != "-" && stat(path.c_str(), &facts) == 0 && S_ISREG(facts.st_mode);
    stamps.push_back(
        isThere ? std::optional(Stamp{facts.st_mtim.tv_sec, facts.st_mtim.tv_nsec, facts.st_size, facts.st_ino})
                : std::nullopt);
  }
  return stamps;
}

}  // namespace radio
