// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/keyed_archive.h>

#include <utility>

namespace havrin {
inline namespace platform {

using Kind = BinaryObject::Kind;

KeyedArchive::KeyedArchive(Strong<NSData> data) : data_(std::move(data)) {}

Decoded<std::unique_ptr<KeyedArchive>> KeyedArchive::open(NSData& data) {
  const Strong<NSObject> copy = data.copy();  // mutable data may change meanwhile
  std::unique_ptr<KeyedArchive> archive(new KeyedArchive(static_cast<NSData*>(copy.get())));
  const auto because = [](const char* what, detail::ErrorHolder failure) {
    return DecodingError::dataCorrupted(what + DecodingError(std::move(failure)).detail());
  };
  if (auto failure = archive->readList()) return because("not a property list: ", std::move(failure));
  if (auto failure = archive->findParts()) return because("not a keyed archive: ", std::move(failure));
  return archive;
}

detail::ErrorHolder KeyedArchive::readList() {
  const std::span<const std::byte> bytes = data_->bytes();
  if (isBinaryPropertyList(bytes)) {
    auto list = BinaryPropertyList::fromData(bytes);
    if (!list) return std::move(list.failure());
    list_ = *list;
  } else {
    auto tree = readPropertyList(bytes);
    if (!tree) return std::move(tree.failure());
    tree_.emplace(*std::move(tree));
  }
  return {};
}

detail::ErrorHolder KeyedArchive::findParts() {
  auto root = objectAt(tree_ ? 0 : list_.topObject());
  if (!root) return std::move(root.failure());
  const auto wrong = [](std::string_view what) { return DecodingError::dataCorrupted(what).holder(); };
  if (root->kind() != Kind::dictionary) return wrong("the top object is not a dictionary");
  std::uint64_t from = 0;
  const auto archiver = find(*root, "$archiver", from);
  const auto version = member(*root, "$version", Kind::integer);
  const auto objects = member(*root, "$objects", Kind::array);
  const auto top = member(*root, "$top", Kind::dictionary);
  constexpr std::int64_t kVersion = 100000;
  if (!archiver || !isTextAt(*archiver, "NSKeyedArchiver")) return wrong("\"$archiver\" is not \"NSKeyedArchiver\"");
  if (!version || version->integer() != kVersion) return wrong("\"$version\" is not 100000");
  if (!objects) return wrong("\"$objects\" is not an array");
  if (!top) return wrong("\"$top\" is not a dictionary");
  objects_ = *objects;
  top_ = *top;
  return {};
}

// Objects mostly read their keys in the order in which they wrote them: the search begins behind the last one found.
std::optional<std::uint64_t> KeyedArchive::find(const BinaryObject& dictionary, std::string_view key,
                                                std::uint64_t& from) const {
  const std::uint64_t count = dictionary.count();
  for (std::uint64_t step = 0, at = from; step < count; ++step, ++at) {
    if (at >= count) at = 0;
    if (!isTextAt(dictionary.key(at), key)) continue;
    from = at + 1;
    return dictionary.value(at);
  }
  return std::nullopt;
}

std::optional<BinaryObject> KeyedArchive::member(const BinaryObject& dictionary, std::string_view key,
                                                 Kind kind) const {
  std::uint64_t from = 0;
  const auto number = find(dictionary, key, from);
  if (!number) return std::nullopt;
  const auto object = objectAt(*number);
  if (!object || object->kind() != kind) return std::nullopt;
  return *object;
}

}  // namespace platform
}  // namespace havrin
