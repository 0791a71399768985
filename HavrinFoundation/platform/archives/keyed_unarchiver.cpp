// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>

#include <HavrinFoundation/platform/archives/archive_reader.h>
#include <HavrinFoundation/platform/archives/archived_keys.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/string.h>

#include <utility>

namespace havrin {
inline namespace platform {
namespace {

using Kind = BinaryObject::Kind;

Strong<NSObject> unarchived(const AllowedClasses& allowed, NSData* data, Strong<NSError>* error) {
  const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(data, error);
  if (!unarchiver) return nullptr;
  Strong<NSObject> root = allowed.classes
                              ? unarchiver->decodeObjectOfClasses(allowed.classes, NSKeyedArchiveRootObjectKey)
                              : unarchiver->decodeObjectOfClass(allowed.cls, NSKeyedArchiveRootObjectKey);
  if (!root && error) {
    *error = unarchiver->hasFailed() ? unarchiver->error()
                                     : makeCodingError(NSCoderValueNotFoundError, "the root object is null or missing");
  }
  return root;
}

}  // namespace

NSKeyedUnarchiver::NSKeyedUnarchiver() = default;

NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

Strong<NSKeyedUnarchiver> NSKeyedUnarchiver::initForReadingFromData(NSData* data, Strong<NSError>* error) {
  const auto open = [&]() -> Decoded<std::unique_ptr<KeyedArchive>> {
    // An object that is being decoded has come back to its unarchiver: the reader's frames are below on the stack.
    if (reader_ && reader_->isInside())
      return DecodingError::dataCorrupted("the unarchiver is still decoding another archive");
    reader_.reset();
    if (!data) return DecodingError::dataCorrupted("not a keyed archive: the data is null");
    return KeyedArchive::open(*data);
  };
  auto archive = open();
  if (archive) {
    reader_ = std::make_unique<ArchiveReader>(*this, *std::move(archive));
    return Strong<NSKeyedUnarchiver>(this);
  }
  if (error) *error = makeCodingError(NSCoderReadCorruptError, archive.error().detail());
  return nullptr;
}

Strong<NSObject> NSKeyedUnarchiver::unarchivedObjectOfClass(Class cls, NSData* data, Strong<NSError>* error) {
  return unarchived({.cls = cls}, data, error);
}

Strong<NSObject> NSKeyedUnarchiver::unarchivedObjectOfClasses(const NSSet* classes, NSData* data,
                                                              Strong<NSError>* error) {
  return unarchived({.cls = nullptr, .classes = classes}, data, error);
}

void NSKeyedUnarchiver::setRequiresSecureCoding(bool required) { requiresSecureCoding_ = required; }

void NSKeyedUnarchiver::setDecodingFailurePolicy(NSDecodingFailurePolicy policy) { policy_ = policy; }

bool NSKeyedUnarchiver::containsValueForKey(std::string_view key) {
  return reader_ && reader_->contains(ArchivedKey(key));
}

Strong<NSObject> NSKeyedUnarchiver::decodeObjectForKey(std::string_view key) {
  if (reader_ && requiresSecureCoding()) {
    reader_->fail("decodeObjectForKey: is not allowed with secure coding; use decodeObjectOfClass:forKey:");
    return nullptr;
  }
  return decode(nullptr, nullptr, key);
}

Strong<NSObject> NSKeyedUnarchiver::decodeObjectOfClass(Class cls, std::string_view key) {
  return decode(cls, nullptr, key);
}

Strong<NSObject> NSKeyedUnarchiver::decodeObjectOfClasses(const NSSet* classes, std::string_view key) {
  return decode(nullptr, classes, key);
}

// Code of the application that runs while its objects are decoded may release the unarchiver or the set. The outermost
// call holds the unarchiver for those that objects make of it.
Strong<NSObject> NSKeyedUnarchiver::decode(Class cls, const NSSet* classes, std::string_view key) {
  if (!reader_) return nullptr;
  const Strong<NSKeyedUnarchiver> held(reader_->isInside() ? nullptr : this);
  const Strong<NSSet> heldClasses(const_cast<NSSet*>(classes));
  return reader_->objectOfClasses(ArchivedKey(key), {.cls = cls, .classes = classes});
}

bool NSKeyedUnarchiver::decodeBoolForKey(std::string_view key) {
  const auto value = reader_ ? reader_->value(ArchivedKey(key), Kind::boolean) : std::nullopt;
  return value && value->boolean();
}

std::int64_t NSKeyedUnarchiver::decodeIntegerForKey(std::string_view key) {
  const auto value = reader_ ? reader_->value(ArchivedKey(key), Kind::integer) : std::nullopt;
  return value ? value->integer() : 0;
}

double NSKeyedUnarchiver::decodeDoubleForKey(std::string_view key) {
  const auto value = reader_ ? reader_->value(ArchivedKey(key), Kind::real) : std::nullopt;
  return value ? value->real() : 0;
}

std::span<const std::byte> NSKeyedUnarchiver::decodeBytesForKey(std::string_view key) {
  const auto value = reader_ ? reader_->value(ArchivedKey(key), Kind::data) : std::nullopt;
  return value ? value->data() : std::span<const std::byte>();
}

void NSKeyedUnarchiver::finishDecoding() {
  if (reader_ && reader_->isInside())
    return reader_->fail("finishDecoding was called while an object was being decoded");
  reader_.reset();
}

template ClassObject* buildClass<NSKeyedUnarchiver>();

}  // namespace platform
}  // namespace havrin
