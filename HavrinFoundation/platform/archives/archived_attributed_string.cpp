// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/archived_attributed_string.h>

#include <HavrinFoundation/platform/archives/archive_reader.h>
#include <HavrinFoundation/platform/archives/archive_writer.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace havrin {
inline namespace platform {
namespace {

using Runs = std::vector<NSAttributedString::Run>;

void appendVarint(std::vector<std::byte>& bytes, std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) bytes.push_back(static_cast<std::byte>(value | 0x80));
  bytes.push_back(static_cast<std::byte>(value));
}

// Removes a varint from the front of `bytes`. Empty when: it is truncated or has more than 63 bits.
std::optional<std::uint64_t> takeVarint(std::span<const std::byte>& bytes) {
  std::uint64_t value = 0;
  for (unsigned shift = 0; shift < 63 && !bytes.empty(); shift += 7) {
    const auto byte = std::to_integer<std::uint64_t>(bytes.front());
    bytes = bytes.subspan(1);
    value |= (byte & 0x7F) << shift;
    if (byte < 0x80) return value;
  }
  return std::nullopt;
}

// An immutable copy of attributes that are mutable. Null when: it is not a dictionary, or exceeds the budget.
Strong<NSDictionary> immutableAttributes(NSObject* object, ArchiveReader& reader) {
  NSDictionary* const attributes = cast<NSDictionary>(object);
  if (!attributes || !isKind<NSMutableDictionary>(attributes)) return attributes;
  if (!reader.charge(kArchivedMemberSize * (1 + attributes->count()))) return nullptr;
  return cast<NSDictionary>(attributes->copy());
}

// The runs encoded in `info`, with equal neighbours merged. Empty when: `info` is malformed, or a limit is exceeded.
std::optional<Runs> runsOf(std::span<const std::byte> info, const std::vector<ArchiveReader::Part>& parts,
                           ArchiveReader& reader) {
  const auto numbers =
      static_cast<std::size_t>(std::ranges::count_if(info, [](std::byte byte) { return byte < std::byte{0x80}; }));
  if (!reader.charge(kArchivedRunSize * (numbers / 2))) return std::nullopt;
  std::vector<Strong<NSDictionary>> attributes;
  for (const ArchiveReader::Part& part : parts) {
    attributes.push_back(immutableAttributes(part.object, reader));
    if (!attributes.back()) return std::nullopt;
  }
  Runs runs;
  runs.reserve(numbers / 2);
  std::uint64_t end = 0;
  for (std::uint64_t last = 0; !info.empty();) {
    const auto length = takeVarint(info);
    const auto index = takeVarint(info);
    if (!length || !index || *index >= parts.size() || !reader.addExtent(parts[*index].work)) return std::nullopt;
    const bool isOther = runs.empty() || attributes[*index].get() != attributes[last].get();
    if (isOther && !runs.empty() && !reader.chargeWork(std::max(parts[*index].work, parts[last].work))) {
      return std::nullopt;
    }
    if (isOther && (runs.empty() || !attributes[*index]->isEqual(attributes[last]))) {
      runs.push_back({attributes[*index], {end, *length}});
    } else {
      runs.back().range.length += *length;
    }
    end += *length;
    last = *index;
  }
  return runs;
}

// Counts the cost of decoding the runs.
void addRuns(std::span<const Strong<NSObject>> attributes, ArchiveWriter& writer) {
  if (writer.hasFailed()) return;
  writer.charge(kArchivedRunSize * attributes.size());
  for (std::size_t i = 0; i < attributes.size(); ++i) {
    const std::uint64_t work = writer.workOf(attributes[i]);
    writer.addExtent(work);
    if (i != 0 && attributes[i] != attributes[i - 1])
      writer.chargeWork(std::max(work, writer.workOf(attributes[i - 1])));
  }
}

}  // namespace

void encodeAttributedString(const NSObject& object, ArchiveWriter& writer) {
  const auto& text = static_cast<const NSAttributedString&>(object);
  const Strong<NSString> string = text.string();
  writer.addObject("NSString", string);
  ArrayBuilder attributes(1);
  std::vector<std::byte> info;
  std::uint64_t runs = 0;
  for (std::uint64_t at = 0; at < string->length(); ++runs) {
    const NSAttributedString::Run run = text.attributesAtIndex(at);
    attributes.add(run.attributes);
    appendVarint(info, run.range.location + run.range.length - at);
    appendVarint(info, runs);
    at = std::max(run.range.location + run.range.length, at + 1);
  }
  const Strong<NSArray> all = attributes.finish();
  if (runs <= 1) return writer.addObject("NSAttributes", all->firstObject());
  writer.addObject("NSAttributes", all);
  writer.addObject("NSAttributeInfo", makeData(info));
  addRuns(all->elements(), writer);
}

template <class C>
Strong<NSObject> decodeAttributedString(ArchiveReader& reader) {
  NSString* const string = reader.object<NSString>("NSString");
  if (!string || (isKind<NSMutableString>(string) && !reader.charge(2 * string->length()))) return nullptr;
  NSObject* const attributes = reader.objectOfLayersOwn("NSAttributes");
  if (reader.hasFailed()) return nullptr;
  if (!attributes) return make<C>(string);
  if (isKind<NSDictionary>(attributes)) {
    const Strong<NSDictionary> one = immutableAttributes(attributes, reader);
    return one ? make<C>(string, one) : nullptr;
  }
  const NSData* const info = isKind<NSArray>(attributes) ? reader.object<NSData>("NSAttributeInfo") : nullptr;
  const auto runs = info ? runsOf(info->bytes(), reader.partsOf("NSAttributes"), reader) : std::nullopt;
  try {
    if (runs) return make<C>(string, std::span<const NSAttributedString::Run>(*runs));
  } catch (const NSException&) {  // the runs do not cover the text exactly
  }
  reader.fail("the attributes do not match the text");
  return nullptr;
}

template Strong<NSObject> decodeAttributedString<NSAttributedString>(ArchiveReader&);
template Strong<NSObject> decodeAttributedString<NSMutableAttributedString>(ArchiveReader&);

}  // namespace platform
}  // namespace havrin
