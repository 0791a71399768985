// SPDX-License-Identifier: Apache-2.0
#include "saved_state.h"

#include "state_merge.h"
#include <HavrinFoundation/collections/set_blocks_messages.h>
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/platform/application/process_info.h>
#include <HavrinFoundation/platform/archives/coder.h>
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/error.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/platform/foundation/ns_url.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/runtime/casts_messages.h>
#include <HavrinFoundation/runtime/insecure_unarchiving_messages.h>
#include <HavrinFoundation/text/hex.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <span>
#include <string_view>
#include <utility>

namespace radio {

using namespace havrin;

namespace {

Strong<NSSet> linksOf(const std::set<std::string>& texts) {
  const auto links = make<NSMutableSet>();
  for (const std::string& text : texts) {
    if (const auto link = NSURL::URLWithString(makeString(text))) links->addObject(link);
  }
  return links;
}

Strong<NSDictionary> dictionaryOf(const std::map<std::string, std::string>& texts) {
  const auto dictionary = make<NSMutableDictionary>();
  for (const auto& [key, value] : texts) dictionary->setObject(makeString(value), makeString(key));
  return dictionary;
}

}  // namespace

// The state as it is archived: links, dates and texts as objects of their classes.
class ArchivedState : public Object<ArchivedState, NSObject> {
 public:
  ArchivedState() = default;
  explicit ArchivedState(SavedState state) : state_(std::move(state)) {}

  [[nodiscard]] const SavedState& state() const { return state_; }

  void encodeWithCoder(NSCoder* coder) const {
    coder->encodeObject(linksOf(state_.favourites), "favourites");
    coder->encodeObject(linksOf(state_.unmarked), "unmarked");
    coder->encodeObject(makeString(state_.search), "search");
    coder->encodeBool(state_.favouritesOnly, "favouritesOnly");
    coder->encodeObject(dictionaryOf(state_.genreColours), "genreColours");
    coder->encodeObject(makeString(state_.savedBy.uuidString()), "savedBy");
    if (state_.lastOpen) coder->encodeObject(make<NSDate>(*state_.lastOpen), "lastOpen");
  }

  // What is missing stays as it is in a fresh state; what is something else than it should be makes the archive fail.
  Strong<NSObject> initWithCoder(NSCoder* coder) {
    state_.favourites = decodeLinks(*coder, "favourites");
    state_.unmarked = decodeLinks(*coder, "unmarked");
    if (const auto search = coder->decodeObject<NSString>("search")) state_.search = utf8(*search);
    state_.favouritesOnly = coder->decodeBoolForKey("favouritesOnly");
    state_.genreColours = decodeColours(*coder);
    if (const auto board = coder->decodeObject<NSString>("savedBy")) {
      state_.savedBy = UUID::fromString(utf8(*board)).value_or(zero<UUID>());
    }
    if (const auto date = coder->decodeObject<NSDate>("lastOpen")) state_.lastOpen = date->value();
    return this;
  }

 private:
  static void fail(NSCoder& coder, std::string_view key) {
    const auto why = makeString("an entry of \"" + std::string(key) + "\" has another type than it should");
    coder.failWithError(make<NSError>(NSCocoaErrorDomain, NSCoderInvalidValueError,
                                      makeDictionary({{NSDebugDescriptionErrorKey, why}})));
  }

  static std::set<std::string> decodeLinks(NSCoder& coder, std::string_view key) {
    std::set<std::string> texts;
    const auto links = coder.decodeObject<NSSet>(key);
    if (!links) return texts;
    const auto isLink = [](NSObject* object) { return send<"ifInstance:">(classOf<NSURL>(), object); };
    if (send<"reject:">(links, isLink)->count() > 0) fail(coder, key);
    for (NSObject* link : each(send<"select:">(links, isLink))) {
      texts.insert(static_cast<NSURL&>(*link).value().relativeString());
    }
    return texts;
  }

  static std::map<std::string, std::string> decodeColours(NSCoder& coder) {
    std::map<std::string, std::string> codes;
    const auto colours = coder.decodeObject<NSDictionary>("genreColours");
    if (!colours) return codes;
    colours->forEach([&](NSObject* key, NSObject* value) {
      const Strong<NSString> genre = send<"ifInstance:">(classOf<NSString>(), key);
      const Strong<NSString> code = send<"ifInstance:">(classOf<NSString>(), value);
      const bool isSound = genre && code && fromHexString<UIColor>(utf8(*code));
      if (!isSound) fail(coder, "genreColours");
      if (isSound) codes[utf8(*genre)] = utf8(*code);
      return isSound;
    });
    return codes;
  }

  SavedState state_;

 public:
  using Protocols = List<NSCoding>;
  using Members = List<Method<"encodeWithCoder:", &ArchivedState::encodeWithCoder>,
                       Method<"initWithCoder:", &ArchivedState::initWithCoder>>;
};

namespace {

const ArchivedClass<ArchivedState> kArchivedState("BoardState");

std::string reasonOf(const NSError& error) {
  const Strong<NSString> text =
      send<"ifInstance:">(classOf<NSString>(), error.userInfo()->objectForKey(NSDebugDescriptionErrorKey));
  return utf8(text ? *text : *error.localizedDescription());
}

// The state in an archive, or why there is none.
std::pair<std::optional<SavedState>, std::string> unarchived(std::span<const std::byte> bytes) {
  Strong<NSError> error;
  const auto root = send<"insecureUnarchivedObjectOfClass:fromData:error:">(
      classOf<NSKeyedUnarchiver>(), classOf<ArchivedState>(), makeData(bytes), &error);
  if (error) return {std::nullopt, reasonOf(*error)};
  const Strong<ArchivedState> state = send<"ifInstance:">(classOf<ArchivedState>(), root);
  if (!state) return {std::nullopt, "an archive without a board's state that can be read"};
  return {state->state(), ""};
}

std::string beginningOf(std::span<const std::byte> bytes) {
  constexpr std::size_t kShown = 8;
  return bytes.empty() ? "; it is empty" : "; it begins with " + hexString(bytes.first(std::min(bytes.size(), kShown)));
}

UUID newIdentifier() {
  UUID::Bytes bytes;
  std::random_device random;
  for (auto& byte : bytes) byte = static_cast<UUID::Bytes::value_type>(random());
  return UUID(bytes);
}

}  // namespace

std::string defaultStateFile() {
  constexpr const char* kFile = "/havrin-radio/board.state";
  const auto variable = [](const char* name) {
    return NSProcessInfo::processInfo()->environmentValue(name).value_or("");
  };
  // A relative path is to be ignored.
  if (const std::string folder = variable("XDG_STATE_HOME"); folder.starts_with('/')) return folder + kFile;
  const std::string home = variable("HOME");
  return home.empty() ? "" : home + "/.local/state" + kFile;
}

RestoredState restoreState(const StateFile& file) {
  using Found = StateFile::Contents::Found;
  const StateFile::Contents contents = file.read();
  if (contents.found == Found::nothing) return {};
  if (contents.found == Found::unreadable) {
    return {{}, "cannot read the saved state " + file.path() + " (" + contents.problem + "), nothing is saved", false};
  }
  std::string reason = "expected at most 16 MiB, found more";
  if (contents.found == Found::bytes) {
    auto [state, problem] = unarchived(contents.bytes);
    if (state) return {*std::move(state), "", true};
    reason = problem + beginningOf(contents.bytes);
  }
  const std::string damaged = "the saved state " + file.path() + " is damaged (" + reason + ")";
  const std::string aside = file.setAside();
  if (aside.empty()) return {{}, damaged + " and cannot be set aside, nothing is saved", false};
  return {{}, damaged + " and is set aside as " + aside, true};
}

SaveResult saveState(const SavedState& base, SavedState state, const StateFile& file) {
  SaveResult result;
  result.problem = file.update([&](const StateFile::Contents& contents) -> StateFile::Change {
    if (contents.found == StateFile::Contents::Found::bytes) {
      const auto theirs = unarchived(contents.bytes).first;
      result.wasMerged = theirs && theirs->savedBy != base.savedBy;
      if (result.wasMerged) state = merged(base, state, *theirs);
    }
    state.savedBy = newIdentifier();
    Strong<NSError> error;
    const auto archive = NSKeyedArchiver::archivedDataWithRootObject(make<ArchivedState>(state), false, &error);
    if (!archive) return {{}, reasonOf(*error)};
    return {{archive->bytes().begin(), archive->bytes().end()}, ""};
  });
  return result;
}

}  // namespace radio
