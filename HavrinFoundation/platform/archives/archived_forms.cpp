// SPDX-License-Identifier: Apache-2.0
// The archived forms of the layer's classes, with encoding and decoding side by side.
//
//   NSString, NSNumber, NSData      the value itself
//   NSMutableString                 NS.string: text
//   NSMutableData                   NS.data: data
//   NSNull                          nothing
//   NSArray, NSSet                  NS.objects: references
//   NSOrderedSet                    NS.object.0, NS.object.1, ...: a reference each; NS.objects is also accepted
//   NSDictionary                    NS.keys, NS.objects: references, in the same order
//   NSDate                          NS.time: seconds since 2001, a real
//   NSUUID                          NS.uuidbytes: 16 bytes
//   NSURL                           NS.base: a link or null; NS.relative: a string
//   NSAttributedString              NSString: a string; NSAttributes: a dictionary where one holds for the whole text,
//                                   else an array of them, and NSAttributeInfo: data, for each run its length and the
//                                   index of its attributes, 7 bits to a byte, the low ones first, bit 7 on all but the
//                                   last
//
// Mutable arrays, dictionaries, sets, ordered sets and attributed strings have the form of the immutable ones.
#include <HavrinFoundation/platform/archives/archive_reader.h>
#include <HavrinFoundation/platform/archives/archive_writer.h>
#include <HavrinFoundation/platform/archives/archived_attributed_string.h>
#include <HavrinFoundation/platform/archives/archived_classes.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/platform/foundation/ns_url.h>
#include <HavrinFoundation/platform/foundation/ns_uuid.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/string.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

using Kind = BinaryObject::Kind;
using Use = ArchiveReader::Use;

// The object as the class of its form. The cast is safe, because forms are found by class.
template <class C>
const C& as(const NSObject& object) {
  return static_cast<const C&>(object);
}

ArchiveWriter::Number numberOfText(const NSString& string, ArchiveWriter& writer) {
  if (string.isPlain() && !string.isWide()) return writer.list().text(string.narrow());
  return writer.list().text(std::u16string_view(utf16(string)));
}

// Strings.

void encodeString(const NSObject& object, ArchiveWriter& writer) {
  const NSString& string = as<NSString>(object);
  writer.setPlain(numberOfText(string, writer), ArchivedExtent::ofText(string.length()));
}

void encodeMutableString(const NSObject& object, ArchiveWriter& writer) {
  const NSString& string = as<NSString>(object);
  writer.add("NS.string", numberOfText(string, writer), ArchivedExtent::ofText(string.length()).expansion);
}

template <class C>
Strong<NSObject> decodeString(ArchiveReader& reader) {
  const auto text = reader.value("NS.string");
  if (text && text->kind() == Kind::asciiText) return make<C>(text->asciiText());
  if (text && text->isText()) return make<C>(text->utf16Text());
  const NSString* const string = reader.object<NSString>("NS.string");
  if (!string || !reader.charge(2 * string->length())) return nullptr;
  return make<C>(utf16(*string));
}

// Numbers, nulls, data.

void encodeNumber(const NSObject& object, ArchiveWriter& writer) {
  const NSNumber& number = as<NSNumber>(object);
  BinaryPropertyListWriter& list = writer.list();
  switch (number.kind()) {
    case NSNumber::Kind::boolean:
      return writer.setPlain(list.boolean(number.boolValue()));
    case NSNumber::Kind::integer:
      return writer.setPlain(list.integer(number.integerValue()));
    case NSNumber::Kind::unsignedInteger:
      return writer.setPlain(list.integer(number.unsignedIntegerValue()));
    case NSNumber::Kind::real:
      return writer.setPlain(list.real(number.doubleValue()));
  }
}

Strong<NSObject> decodeNumber(ArchiveReader& reader) {
  reader.fail("NSNumber must be a plain value, got a record");
  return nullptr;
}

void encodeNull(const NSObject&, ArchiveWriter&) {}

Strong<NSObject> decodeNull(ArchiveReader&) { return NSNull::null(); }

void encodeData(const NSObject& object, ArchiveWriter& writer) {
  const auto bytes = as<NSData>(object).bytes();
  writer.setPlain(writer.list().data(bytes), ArchivedExtent::ofData(bytes.size()));
}

void encodeMutableData(const NSObject& object, ArchiveWriter& writer) {
  const auto bytes = as<NSData>(object).bytes();
  writer.add("NS.data", writer.list().data(bytes), ArchivedExtent::ofData(bytes.size()).expansion);
}

template <class C>
Strong<NSObject> decodeData(ArchiveReader& reader) {
  const auto inlined = reader.value("NS.data");
  if (inlined && inlined->kind() == Kind::data) return make<C>(inlined->data());
  const NSData* const data = reader.object<NSData>("NS.data");
  if (!data || !reader.charge(data->length())) return nullptr;
  return make<C>(data->bytes());
}

// Collections.

std::span<const Strong<NSObject>> elementsOf(const NSArray& array) { return array.elements(); }

void encodeArray(const NSObject& object, ArchiveWriter& writer) {
  const Strong<NSArray> array = as<NSArray>(object).snapshot();
  writer.addObjects("NS.objects", elementsOf(*array));
}

Strong<NSObject> decodeArray(ArchiveReader& reader) {
  ArchiveReader::Objects row;
  return reader.objects("NS.objects", Use::inOrder, row) ? makeArray(row) : nullptr;
}

Strong<NSObject> decodeMutableArray(ArchiveReader& reader) {
  ArchiveReader::Objects row;
  if (!reader.objects("NS.objects", Use::inOrder, row)) return nullptr;
  auto array = make<NSMutableArray>(row.size());
  for (NSObject* object : row) array->addObject(object);
  return array;
}

void encodeSet(const NSObject& object, ArchiveWriter& writer) {
  const Strong<NSArray> objects = as<NSSet>(object).allObjects()->snapshot();
  writer.addObjects("NS.objects", elementsOf(*objects));
  writer.addSearch(elementsOf(*objects));
}

template <class C>
Strong<NSObject> decodeSet(ArchiveReader& reader) {
  ArchiveReader::Objects row;
  return reader.objects("NS.objects", Use::members, row) ? make<C>(std::span<NSObject* const>(row)) : nullptr;
}

void encodeOrderedSet(const NSObject& object, ArchiveWriter& writer) {
  const Strong<NSArray> objects = as<NSOrderedSet>(object).array()->snapshot();
  std::uint64_t index = 0;
  for (const Strong<NSObject>& element : elementsOf(*objects)) {
    const std::string key = "NS.object." + std::to_string(index++);
    writer.addObject(key, element);
    writer.chargeWork(ArchivedExtent::ofText(key.size()).expansion);
  }
  writer.addSearch(elementsOf(*objects));
}

template <class C>
Strong<NSObject> decodeOrderedSet(ArchiveReader& reader) {
  ArchiveReader::Objects row;
  const bool isRead = reader.contains("NS.objects") ? reader.objects("NS.objects", Use::members, row)
                                                    : reader.numberedObjects("NS.object.", row);
  return isRead ? make<C>(std::span<NSObject* const>(row)) : nullptr;
}

void encodeDictionary(const NSObject& object, ArchiveWriter& writer) {
  std::vector<Strong<NSObject>> keys;
  std::vector<Strong<NSObject>> values;
  as<NSDictionary>(object).forEach([&](NSObject* key, NSObject* value) {
    keys.emplace_back(key);
    values.emplace_back(value);
    return true;
  });
  writer.addObjects("NS.keys", keys);
  writer.addSearch(keys, kArchivedKeyPartSize);
  writer.addObjects("NS.objects", values);
}

template <class C>
Strong<NSObject> decodeDictionary(ArchiveReader& reader) {
  ArchiveReader::Objects keys;
  ArchiveReader::Objects values;
  if (!reader.objects("NS.keys", Use::keys, keys) || !reader.objects("NS.objects", Use::inOrder, values)) {
    return nullptr;
  }
  if (keys.size() != values.size()) {
    reader.fail("a dictionary of " + std::to_string(keys.size()) + " keys and " + std::to_string(values.size()) +
                " values");
    return nullptr;
  }
  std::vector<NSDictionary::KeyAndValue> entries;
  entries.reserve(keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) entries.emplace_back(keys[i], values[i]);
  try {
    return make<C>(std::span<const NSDictionary::KeyAndValue>(entries));
  } catch (const NSException& exception) {
    reader.fail("invalid dictionary key: " + exception.reason());
    return nullptr;
  }
}

// Dates, identifiers, links.

void encodeDate(const NSObject& object, ArchiveWriter& writer) {
  writer.add("NS.time", writer.list().real(as<NSDate>(object).timeIntervalSinceReferenceDate()));
}

Strong<NSObject> decodeDate(ArchiveReader& reader) {
  const auto seconds = reader.value("NS.time", Kind::real);
  if (seconds) return make<NSDate>(Date::fromTimeIntervalSinceReferenceDate(seconds->real()));
  reader.failWithValue("NS.time", "real", "no value");
  return nullptr;
}

void encodeUUID(const NSObject& object, ArchiveWriter& writer) {
  const UUID::Bytes bytes = as<NSUUID>(object).getUUIDBytes();
  writer.add("NS.uuidbytes", writer.list().data(std::as_bytes(std::span(bytes))),
             ArchivedExtent::ofData(bytes.size()).expansion);
}

Strong<NSObject> decodeUUID(ArchiveReader& reader) {
  const auto data = reader.value("NS.uuidbytes", Kind::data);
  UUID::Bytes bytes;
  if (!data || data->data().size() != bytes.size()) {
    reader.failWithValue("NS.uuidbytes", "16 bytes",
                         data ? std::to_string(data->data().size()) + " bytes" : "no value");
    return nullptr;
  }
  std::memcpy(bytes.data(), data->data().data(), bytes.size());
  return make<NSUUID>(UUID(bytes));
}

void encodeURL(const NSObject& object, ArchiveWriter& writer) {
  const NSURL& url = as<NSURL>(object);
  const Strong<NSURL> base = url.baseURL();
  const std::uint64_t size = url.relativeString()->length() + (base ? base->absoluteString()->length() : 0);
  writer.charge(3 * size);
  writer.chargeWork(size);
  writer.addObject("NS.base", base);
  writer.addObject("NS.relative", url.relativeString());
}

// A URL is restored unchanged, with or without a base, even if its text is not a URI reference.
Strong<NSObject> decodeURL(ArchiveReader& reader) {
  NSObject* const base = reader.objectOfClasses("NS.base", {.cls = classOf<NSURL>()});
  const NSString* const text = reader.object<NSString>("NS.relative");
  if (!text) return nullptr;
  const NSURL* const baseURL = cast<NSURL>(base);
  if (base && !baseURL) {
    reader.failWithValue("NS.base", "NSURL", classOf(*base).name());
    return nullptr;
  }
  // Each URL has its own copy of its text and of its absolute text.
  const std::uint64_t size = text->length() + (baseURL ? baseURL->absoluteString()->length() : 0);
  if (!reader.charge(3 * size) || !reader.chargeWork(size)) return nullptr;
  const std::string relative = utf8(*text);
  if (baseURL) return make<NSURL>(URL::fromUncheckedText(relative, baseURL->value()));
  return make<NSURL>(URL::fromUncheckedText(relative));
}

template <class C>
constexpr ArchivedForm form(std::string_view name, Strong<NSObject> (*decode)(ArchiveReader&),
                            void (*encode)(const NSObject&, ArchiveWriter&)) {
  return {name, &classObject<C>, decode, encode};
}

constexpr ArchivedForm kForms[] = {
    form<NSString>("NSString", decodeString<NSString>, encodeString),
    form<NSMutableString>("NSMutableString", decodeString<NSMutableString>, encodeMutableString),
    form<NSNumber>("NSNumber", decodeNumber, encodeNumber),
    form<NSNull>("NSNull", decodeNull, encodeNull),
    form<NSData>("NSData", decodeData<NSData>, encodeData),
    form<NSMutableData>("NSMutableData", decodeData<NSMutableData>, encodeMutableData),
    form<NSArray>("NSArray", decodeArray, encodeArray),
    form<NSMutableArray>("NSMutableArray", decodeMutableArray, encodeArray),
    form<NSDictionary>("NSDictionary", decodeDictionary<NSDictionary>, encodeDictionary),
    form<NSMutableDictionary>("NSMutableDictionary", decodeDictionary<NSMutableDictionary>, encodeDictionary),
    form<NSSet>("NSSet", decodeSet<NSSet>, encodeSet),
    form<NSMutableSet>("NSMutableSet", decodeSet<NSMutableSet>, encodeSet),
    form<NSOrderedSet>("NSOrderedSet", decodeOrderedSet<NSOrderedSet>, encodeOrderedSet),
    form<NSMutableOrderedSet>("NSMutableOrderedSet", decodeOrderedSet<NSMutableOrderedSet>, encodeOrderedSet),
    form<NSDate>("NSDate", decodeDate, encodeDate),
    form<NSUUID>("NSUUID", decodeUUID, encodeUUID),
    form<NSURL>("NSURL", decodeURL, encodeURL),
    form<NSAttributedString>("NSAttributedString", decodeAttributedString<NSAttributedString>, encodeAttributedString),
    form<NSMutableAttributedString>("NSMutableAttributedString", decodeAttributedString<NSMutableAttributedString>,
                                    encodeAttributedString),
};

}  // namespace

const ArchivedForm* archivedFormForName(std::string_view name) {
  const auto* const found = std::ranges::find(kForms, name, &ArchivedForm::name);
  return found == std::end(kForms) ? nullptr : found;
}

const ArchivedForm* archivedFormForClass(const ClassObject* cls) {
  const auto* const found = std::ranges::find_if(kForms, [cls](const ArchivedForm& form) { return form.cls() == cls; });
  return found == std::end(kForms) ? nullptr : found;
}

}  // namespace platform
}  // namespace havrin
