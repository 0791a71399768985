// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/archive_reader.h>

#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/string.h>

#include <utility>

namespace havrin {
inline namespace platform {
using Kind = BinaryObject::Kind;

// Makes the values of one object current for its lifetime. If the object is not made by the end, its slot is reset, so
// that it can be decoded again.
class ArchiveReader::Nested {
 public:
  Nested(ArchiveReader& reader, std::uint64_t uid, const BinaryObject& values)
      : reader_(reader),
        frame_{.values = values, .uid = uid, .extent = {}},
        outer_(std::exchange(reader.frame_, &frame_)) {
    ++reader_.depth_;
  }
  Nested(const Nested&) = delete;
  Nested& operator=(const Nested&) = delete;
  ~Nested() {
    Slot& slot = reader_.objects_[frame_.uid];
    if (slot.state != Slot::State::made) slot = Slot();
    reader_.frame_ = outer_;
    --reader_.depth_;
  }

 private:
  ArchiveReader& reader_;
  Frame frame_;
  Frame* outer_;
};

ArchiveReader::ArchiveReader(NSKeyedUnarchiver& coder, std::unique_ptr<KeyedArchive> archive)
    : coder_(coder), archive_(std::move(archive)), objects_(archive_->count()), budget_(archive_->size()) {}

// Failures.

std::string ArchiveReader::quoted(std::string_view name) {
  constexpr std::size_t kLongest = 80;
  const bool isLong = name.size() > kLongest;
  return '"' + std::string(name.substr(0, kLongest)) + (isLong ? "...\"" : "\"");
}

void ArchiveReader::fail(std::string_view reason) {
  if (hasFailed()) return;
  std::string text = frame_->uid == 0 ? "at the top: " : "object " + std::to_string(frame_->uid) + ": ";
  coder_.failWithError(makeCodingError(NSCoderReadCorruptError, text += reason));
}

void ArchiveReader::failWithValue(std::string_view key, std::string_view wanted, std::string_view got) {
  fail("expected " + std::string(wanted) + ", got " + std::string(got) + " (key " + quoted(key) + ')');
}

// Values.

bool ArchiveReader::contains(std::string_view key) {
  if (hasFailed() || !archive_->find(frame_->values, key, frame_->next)) return false;
  --frame_->next;  // the same key is usually decoded next
  return true;
}

std::optional<BinaryObject> ArchiveReader::value(std::string_view key) {
  if (hasFailed()) return std::nullopt;
  const auto number = archive_->find(frame_->values, key, frame_->next);
  if (!number) return std::nullopt;
  const auto object = archive_->objectAt(*number);
  if (!object) {
    fail(object.error().detail() + " (key " + quoted(key) + ')');
    return std::nullopt;
  }
  if (!charge(object->encodedSize())) return std::nullopt;
  const bool isText = object->isText();
  const bool isData = object->kind() == Kind::data;
  if (isText && !addExtent(ArchivedExtent::ofText(object->count()).expansion)) return std::nullopt;
  if (isData && !addExtent(ArchivedExtent::ofData(object->count()).expansion)) return std::nullopt;
  return *object;
}

std::optional<BinaryObject> ArchiveReader::value(std::string_view key, Kind kind) {
  const auto found = value(key);
  if (!found || found->kind() == kind) return found;
  constexpr std::string_view kNames[] = {
      "boolean", "integer", "unsigned integer", "real", "date", "reference", "data", "text", "text",
      "text",    "array",   "dictionary"};
  const auto nameOf = [&](Kind one) { return kNames[static_cast<std::size_t>(one)]; };
  failWithValue(key, nameOf(kind), nameOf(found->kind()));
  return std::nullopt;
}

NSObject* ArchiveReader::object(std::string_view key) {
  if (hasFailed()) return nullptr;
  const auto number = archive_->find(frame_->values, key, frame_->next);
  if (!number) return nullptr;
  const auto uid = archive_->uidAt(*number);
  if (uid) return objectWithUid(*uid);
  failWithValue(key, "reference to an object", "another value");
  return nullptr;
}

// Objects.

NSObject* ArchiveReader::objectWithUid(std::uint64_t uid) {
  if (uid == 0 || hasFailed()) return nullptr;
  if (uid >= objects_.count()) {
    fail("reference to object " + std::to_string(uid) + ", which does not exist");
    return nullptr;
  }
  Slot& slot = objects_[uid];
  switch (slot.state) {
    case Slot::State::unread:
      if (!makeObject(uid)) return nullptr;
      break;
    case Slot::State::open:
      fail("object " + std::to_string(uid) + " contains itself");
      return nullptr;
    case Slot::State::classRecord:
      fail("expected an object, got a class record");
      return nullptr;
    case Slot::State::openToItself:
    case Slot::State::made:
      if (!permitsAgain(slot)) return nullptr;
      break;
  }
  if (frame_->isBounded && !isWithinBounds(frame_->extent.add(slot.extent))) return nullptr;
  return slot.object;
}

bool ArchiveReader::makeObject(std::uint64_t uid) {
  const auto object = archive_->object(uid);
  if (!object) {
    fail("object " + std::to_string(uid) + ": " + object.error().detail());
    return false;
  }
  if (!charge(kArchivedObjectSize + object->encodedSize())) return false;
  if (object->kind() == Kind::dictionary) return makeInstance(uid, *object);
  Slot& slot = objects_[uid];
  slot.object = makePlain(*object);
  if (!slot.object) return false;
  if (object->isText()) slot.extent = ArchivedExtent::ofText(object->count());
  if (object->kind() == Kind::data) slot.extent = ArchivedExtent::ofData(object->count());
  slot.state = Slot::State::made;
  return true;
}

// Strings, numbers and data are plain values in the archive.
Strong<NSObject> ArchiveReader::makePlain(const BinaryObject& object) {
  switch (object.kind()) {
    case Kind::asciiText:
      return permits(classObject<NSString>()) ? makeString(object.asciiText()) : nullptr;
    case Kind::utf16Text:
    case Kind::utf8Text:
      return permits(classObject<NSString>()) ? makeString(object.utf16Text()) : nullptr;
    case Kind::data:
      return permits(classObject<NSData>()) ? makeData(object.data()) : nullptr;
    case Kind::date:
      return permits(classObject<NSDate>()) ? make<NSDate>(object.date()) : nullptr;
    case Kind::uid:
    case Kind::array:
    case Kind::dictionary:
      fail("expected an object, got a reference, an array or a dictionary");
      return nullptr;
    default:
      break;
  }
  if (!permits(classObject<NSNumber>())) return nullptr;
  if (object.kind() == Kind::boolean) return makeNumber(object.boolean());
  if (object.kind() == Kind::real) return makeNumber(object.real());
  return object.kind() == Kind::integer ? makeNumber(object.integer()) : makeNumber(object.unsignedInteger());
}

bool ArchiveReader::makeInstance(std::uint64_t uid, const BinaryObject& values) {
  if (depth_ == NSKeyedUnarchiver::kDeepestNesting) {
    fail("objects are nested deeper than 1024 levels");
    return false;
  }
  const Nested nested(*this, uid, values);
  // Objects of one class usually have their keys in the same order: the search begins where the last one ended.
  const auto classNumber = archive_->find(values, "$class", nextClassKey_);
  nextClassKey_ = nextClassKey_ == 0 ? 0 : nextClassKey_ - 1;
  const auto classUid = classNumber ? archive_->uidAt(*classNumber) : std::nullopt;
  const ArchivedClassEntry* const found = classUid ? classEntry(*classUid) : nullptr;
  if (!found) {
    fail("it has no valid \"$class\"");
    return false;
  }
  const ArchivedClassEntry entry = *found;
  if (!permits(entry.cls)) return false;

  Slot& slot = objects_[uid];
  slot.state = Slot::State::open;
  frame_->isBounded = entry.form != nullptr;
  Strong<NSObject> made = entry.form ? entry.form->decode(*this) : makeOwn(slot, entry);
  if (hasFailed() || (entry.form && !made)) {
    fail("its values could not be decoded");
    return false;
  }
  slot.object = std::move(made);
  slot.extent = frame_->extent;
  slot.allowed = allowedNumber_;
  slot.state = Slot::State::made;
  return true;
}

Strong<NSObject> ArchiveReader::makeOwn(Slot& slot, const ArchivedClassEntry& entry) {
  const auto awakes = [](ClassObject* cls) { return cls->row(selector<"awakeAfterUsingCoder:">) != nullptr; };
  try {
    slot.object = alloc(Class(entry.cls));
  } catch (const NSException& exception) {
    fail(exception.reason());
    return nullptr;
  }
  slot.state = Slot::State::openToItself;
  Strong<NSObject> made = send<"initWithCoder:">(slot.object, &coder_);
  if (!made) return nullptr;
  ClassObject* const cls = dispatchClass(made);
  if (cls == entry.cls ? entry.awakes : awakes(cls)) made = send<"awakeAfterUsingCoder:">(made, &coder_);
  const ClassObject* const shown = made ? dispatchClass(made)->shown() : entry.cls;
  return shown == entry.cls || permits(shown) ? made : nullptr;
}

// Classes.

const ArchiveReader::ArchivedClassEntry* ArchiveReader::classEntry(std::uint64_t uid) {
  if (uid >= objects_.count()) return nullptr;
  Slot& slot = objects_[uid];
  if (const ArchivedClassEntry* const known = objects_.classIn(slot)) return known;
  if (slot.state != Slot::State::unread) return nullptr;
  const auto record = archive_->object(uid);
  if (!record || record->kind() != Kind::dictionary) return nullptr;
  if (!charge(kArchivedObjectSize + record->encodedSize())) return nullptr;
  const auto entry = resolve(*record);
  if (!entry) return nullptr;
  return objects_.addClass(slot, *entry);
}

std::optional<ArchiveReader::ArchivedClassEntry> ArchiveReader::resolve(const BinaryObject& record) {
  std::uint64_t from = 0;
  const auto number = archive_->find(record, "$classname", from);
  const auto name = number ? archive_->objectAt(*number) : detail::ErrorHolder::undescribed();
  if (!name || !name->isText()) {
    fail("its class record has no \"$classname\"");
    return std::nullopt;
  }
  if (!charge(name->encodedSize())) return std::nullopt;
  auto entry = entryForName(name->text());
  const auto hints = entry ? std::nullopt : archive_->member(record, "$classhints", Kind::array);
  for (std::uint64_t i = 0; hints && !entry && i < hints->count(); ++i) {
    const auto hint = archive_->objectAt(hints->element(i));
    if (!hint || !hint->isText() || !charge(kArchivedObjectSize + hint->encodedSize())) break;
    entry = entryForName(hint->text());
  }
  if (!entry) {
    fail("unknown class " + quoted(name->text()) + ": declare an ArchivedClass for it");
    return std::nullopt;
  }
  const auto readable = entry->form ? Decoded<void>() : checkReadable(*entry->cls);
  if (readable) return entry;
  fail("class " + quoted(name->text()) + ' ' + readable.error().detail());
  return std::nullopt;
}

std::optional<ArchiveReader::ArchivedClassEntry> ArchiveReader::entryForName(std::string_view name) {
  ClassObject* const cls = NSKeyedUnarchiver::classForName(name).object();
  if (!cls) return std::nullopt;
  return ArchivedClassEntry{cls, archivedFormForClass(cls), cls->row(selector<"awakeAfterUsingCoder:">) != nullptr};
}

}  // namespace platform
}  // namespace havrin
