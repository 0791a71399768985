// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/keyed_archiver.h>

#include <HavrinFoundation/platform/archives/archive_writer.h>
#include <HavrinFoundation/platform/archives/archived_keys.h>
#include <HavrinFoundation/platform/foundation/data.h>

#include <utility>

namespace havrin {
inline namespace platform {

NSKeyedArchiver::NSKeyedArchiver() : writer_(std::make_unique<ArchiveWriter>(*this)) {}

NSKeyedArchiver::~NSKeyedArchiver() = default;

Strong<NSKeyedArchiver> NSKeyedArchiver::initRequiringSecureCoding(bool required) {
  requiresSecureCoding_ = required;
  return Strong<NSKeyedArchiver>(this);
}

Strong<NSData> NSKeyedArchiver::archivedDataWithRootObject(NSObject* object, bool requiringSecureCoding,
                                                           Strong<NSError>* error) {
  const auto archiver = alloc<NSKeyedArchiver>()->initRequiringSecureCoding(requiringSecureCoding);
  archiver->encodeObject(object, NSKeyedArchiveRootObjectKey);
  Strong<NSData> data = archiver->encodedData();
  if (!data && error) *error = archiver->error();
  return data;
}

// Code of the application that runs while its objects are encoded may release the archiver.
void NSKeyedArchiver::encodeObject(NSObject* object, std::string_view key) {
  const Strong<NSKeyedArchiver> held(writer_->isWriting() ? nullptr : this);
  writer_->addObject(ArchivedKey(key), object);
}

void NSKeyedArchiver::encodeBool(bool value, std::string_view key) {
  writer_->add(ArchivedKey(key), writer_->list().boolean(value));
}

void NSKeyedArchiver::encodeInteger(std::int64_t value, std::string_view key) {
  writer_->add(ArchivedKey(key), writer_->list().integer(value));
}

void NSKeyedArchiver::encodeDouble(double value, std::string_view key) {
  writer_->add(ArchivedKey(key), writer_->list().real(value));
}

void NSKeyedArchiver::encodeBytes(std::span<const std::byte> bytes, std::string_view key) {
  writer_->add(ArchivedKey(key), writer_->list().data(bytes));
}

Strong<NSData> NSKeyedArchiver::encodedData() {
  if (writer_->isWriting()) writer_->fail("encodedData was called while an object was being encoded");
  if (hasFailed()) return nullptr;
  auto bytes = writer_->finish();
  return hasFailed() ? nullptr : make<NSData>(std::move(bytes));
}

template ClassObject* buildClass<NSKeyedArchiver>();

}  // namespace platform
}  // namespace havrin
