// SPDX-License-Identifier: Apache-2.0
#include "station_file.h"

#include "station.h"
#include "system_error.h"
#include <HavrinFoundation/platform/decoding/json_decoder.h>
#include <HavrinFoundation/platform/decoding/property_list_decoder.h>
#include <HavrinFoundation/runtime/lenient_decoding.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <span>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace radio {

using namespace havrin;

namespace {

constexpr std::size_t kLargest = std::size_t{1} << 30;

// Result: empty, or why the file could not be read.
std::string readAll(const std::string& path, std::string& text) {
  const bool isInput = path == "-";
  const int file = isInput ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return errorText();
  struct stat facts {};
  if (fstat(file, &facts) == 0 && facts.st_size > 0) text.reserve(static_cast<std::size_t>(facts.st_size) + 1);
  std::string problem;
  std::array<char, 1 << 16> part;
  for (ssize_t count = 1; count != 0 && text.size() <= kLargest;) {
    count = ::read(file, part.data(), part.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      problem = errorText();
      break;
    }
    text.append(part.data(), static_cast<std::size_t>(count));
  }
  if (!isInput) ::close(file);
  return text.size() > kLargest ? "expected at most 1 GiB, found more" : problem;
}

class Reader {
 public:
  Reader(std::string name, std::atomic<std::size_t>& entries)
      : name_(std::move(name)), userInfo_{{kDecodedEntries, &entries}}, stations_(0) {}

  void readDocument(std::string_view text) {
    JSONDecoder decoder;
    decoder.userInfo = userInfo_;
    decoder.maximumSize = kLargest;
    decoder.read(text, [this](Decoder& document) { decode(document); });
  }

  void readPropertyList(std::string_view text) {
    PropertyListDecoder decoder;
    decoder.userInfo = userInfo_;
    decoder.read(std::as_bytes(std::span(text)), [this](Decoder& document) { decode(document); });
  }

  void readLines(std::string_view text) {
    JSONDecoder decoder;
    decoder.userInfo = userInfo_;
    for (std::size_t line = 1; !text.empty(); ++line) {
      const std::size_t end = text.find('\n');
      const std::string_view entry = text.substr(0, end);
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
      if (entry.find_first_not_of(" \t\r") == std::string_view::npos) continue;
      const Decoded<StationEntry> decoded = decoder.tryDecode<StationEntry>(entry);
      if (decoded) {
        stations_.add(make<Station>(*decoded));
      } else {
        skip("line " + std::to_string(line) + ": " + decoded.error().description());
      }
    }
  }

  void finish(StationFile& file) {
    file.stations = stations_.finish();
    file.skipped = std::move(skipped_);
  }

 private:
  void skip(const std::string& reason) { skipped_.push_back(name_ + ": " + reason); }

  void decode(Decoder& document) {
    const auto report = [this](const SkippedElement& skipped) { skip(skipped.reason.what()); };
    auto list = document.tryUnkeyedContainer();
    const auto entries =
        list ? decodeSkippingInvalidElements<StationEntry>(*list, report)
             : decodeArraySkippingInvalidElements<StationEntry>(document.container(), "stations", report);
    for (const StationEntry& entry : entries) stations_.add(make<Station>(entry));
  }

  std::string name_;
  UserInfo userInfo_;
  ArrayBuilder stations_;
  std::vector<std::string> skipped_;
};

bool isPropertyList(std::string_view text) {
  return text.starts_with("bplist") || text.starts_with("<?xml") || text.starts_with("<!DOCTYPE") ||
         text.starts_with("<plist");
}

// A first line that is an object by itself, and not the one that has all stations.
bool hasLines(std::string_view path, std::string_view text) {
  if (path.ends_with(".jsonl") || path.ends_with(".ndjson")) return true;
  std::string_view line = text.substr(0, text.find('\n'));
  line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
  return line.starts_with('{') && line.ends_with('}') && line.find("\"stations\"") == std::string_view::npos;
}

}  // namespace

Strong<StationFile> readStations(const std::string& path, std::atomic<std::size_t>& entries) {
  auto file = make<StationFile>();
  const std::string name = path == "-" ? "standard input" : path;
  std::string text;
  if (const std::string problem = readAll(path, text); !problem.empty()) {
    file->problem = name + ": " + problem;
    return file;
  }
  try {
    Reader reader(name.substr(name.rfind('/') + 1), entries);
    if (isPropertyList(text)) {
      reader.readPropertyList(text);
    } else if (hasLines(path, text)) {
      reader.readLines(text);
    } else {
      reader.readDocument(text);
    }
    reader.finish(*file);
  } catch (const DecodingError& error) {
    file->problem = name + ": " + error.what();
  }
  return file;
}

}  // namespace radio
