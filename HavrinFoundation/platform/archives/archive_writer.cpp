// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/archive_writer.h>

#include <HavrinFoundation/platform/object/coding_protocols.h>

#include <algorithm>
#include <utility>

namespace havrin {
inline namespace platform {

// Makes one object the target of added values for its lifetime.
class ArchiveWriter::Nested {
 public:
  Nested(ArchiveWriter& writer, std::uint64_t uid, bool isBounded)
      : writer_(writer), outer_(std::exchange(writer.frame_, Frame{.uid = uid, .isBounded = isBounded})) {
    ++writer_.depth_;
    writer_.written_[uid].isOpen = true;
  }
  Nested(const Nested&) = delete;
  Nested& operator=(const Nested&) = delete;
  ~Nested() {
    writer_.written_[writer_.frame_.uid].isOpen = false;
    writer_.frame_ = std::move(outer_);
    --writer_.depth_;
  }

 private:
  ArchiveWriter& writer_;
  Frame outer_;
};

ArchiveWriter::ArchiveWriter(NSKeyedArchiver& coder)
    : coder_(coder), root_(list_.container()), objects_(list_.container()), top_(list_.container()) {
  written_.push_back(
      {.object = nullptr, .number = list_.text(std::string_view("$null")), .extent = {}, .isPlain = true});
}

void ArchiveWriter::fail(std::string_view reason) {
  if (!coder_.hasFailed()) coder_.failWithError(makeCodingError(NSCoderInvalidValueError, reason));
}

void ArchiveWriter::add(std::string_view key, Number value, std::uint64_t work) {
  const Number name = list_.text(key);
  if (frame_.has(name)) return fail("key \"" + std::string(key) + "\" is encoded twice");
  frame_.keys.push_back(name);
  frame_.values.push_back(value);
  charge(list_.sizeOf(value));
  addExtent(work);
}

void ArchiveWriter::addExtent(std::uint64_t work) {
  if (!frame_.isBounded) return;
  if (const auto fits = frame_.extent.add(work); !fits) fail(fits.error().detail());
}

bool ArchiveWriter::Frame::has(Number key) {
  constexpr std::size_t kFew = 16;
  if (keys.size() < kFew) return std::find(keys.begin(), keys.end(), key) != keys.end();
  if (many.empty()) many.insert(keys.begin(), keys.end());
  return !many.insert(key).second;
}

void ArchiveWriter::addObject(std::string_view key, const NSObject* object) { add(key, reference(uidOf(object))); }

void ArchiveWriter::addObjects(std::string_view key, std::span<const Strong<NSObject>> objects) {
  std::vector<Number> references;
  references.reserve(objects.size());
  for (const Strong<NSObject>& object : objects) references.push_back(reference(uidOf(object)));
  charge(kArchivedElementSize * objects.size());
  add(key, list_.array(references));
}

void ArchiveWriter::addSearch(std::span<const Strong<NSObject>> parts, std::uint64_t partSize) {
  if (coder_.hasFailed()) return;
  std::vector<SoughtObject> sought;
  sought.reserve(parts.size());
  for (const Strong<NSObject>& part : parts) {
    sought.push_back({part->hash(), workOf(part)});
    charge(kArchivedMemberSize + partSize * sought.back().work);
    chargeWork(sought.back().work);
  }
  const std::uint64_t work = searchWork(sought);
  chargeWork(work);
  addExtent(work);
}

void ArchiveWriter::setPlain(Number value, const ArchivedExtent& extent) {
  Written& written = written_[frame_.uid];
  written.number = value;
  written.isPlain = true;
  frame_.extent = extent;
}

std::uint64_t ArchiveWriter::uidOf(const NSObject* object) {
  if (!object || coder_.hasFailed()) return 0;
  const auto [found, isNew] = uids_.try_emplace(object, written_.size());
  const std::uint64_t uid = found->second;
  if (isNew) {
    written_.push_back({.object = const_cast<NSObject*>(object), .extent = {}});
    write(uid, *object);
  }
  const Written& written = written_[uid];
  // An object of the application may contain itself; only collections must not, because walks over them would not end.
  if (written.isOpen && planFor(dispatchClass(object)->shown()).form) fail("a collection contains itself");
  if (frame_.isBounded) {
    if (const auto fits = frame_.extent.add(written.extent); !fits) fail(fits.error().detail());
  }
  return uid;
}

void ArchiveWriter::write(std::uint64_t uid, const NSObject& object) {
  if (depth_ == NSKeyedUnarchiver::kDeepestNesting) return fail("objects are nested deeper than 1024 levels");
  ClassObject* const cls = dispatchClass(&object)->shown();
  Plan& plan = planFor(cls);
  if (!plan.refusal.empty()) return fail(plan.refusal);
  charge(kArchivedObjectSize);
  const Nested nested(*this, uid, plan.form != nullptr);
  encode(object, plan);
  Written& written = written_[uid];
  if (!written.isPlain) {
    ClassObject* const writtenAs = plan.form ? plan.form->cls() : cls;
    add("$class", reference(classUid(planFor(writtenAs), writtenAs)));
    written_[uid].number = list_.dictionary(frame_.keys, frame_.values);
  }
  written_[uid].extent = frame_.extent;
}

void ArchiveWriter::encode(const NSObject& object, const Plan& plan) try {
  if (plan.form) {
    plan.form->encode(object, *this);
  } else {
    send<"encodeWithCoder:">(object, &coder_);
  }
} catch (...) {  // the archive has an incomplete object
  fail("an exception was thrown while an object was being encoded");
  throw;
}

ArchiveWriter::Plan& ArchiveWriter::planFor(ClassObject* cls) {
  const auto found = plans_.find(cls);
  return found != plans_.end() ? found->second : plans_.emplace(cls, makePlan(cls)).first->second;
}

ArchiveWriter::Plan ArchiveWriter::makePlan(ClassObject* cls) const {
  Plan plan;
  const std::string name(cls->name());
  const auto known = archivedFormForClass(cls) ? std::nullopt : archivedNameForClass(Class(cls));
  if (known) {
    plan.name = *known;
    if (!cls->row(selector<"encodeWithCoder:">)) {
      plan.refusal = "class " + name + " does not respond to encodeWithCoder:";
    } else if (const auto readable = checkReadable(*cls); !readable) {
      plan.refusal = "class " + name + ' ' + readable.error().detail();
    }
  } else {
    const ClassObject* nearest = cls;
    while (nearest && !plan.form) {
      plan.form = archivedFormForClass(nearest);
      nearest = nearest->superclass();
    }
    if (plan.form) {
      plan.name = plan.form->name;
    } else {
      plan.refusal = "unknown class " + name + ": declare an ArchivedClass for it";
    }
  }
  if (!plan.refusal.empty()) return plan;
  if (coder_.requiresSecureCoding() && !cls->adopts(protocolOf<NSSecureCoding>())) {
    plan.refusal = "class " + name + " does not adopt NSSecureCoding";
  }
  return plan;
}

std::uint64_t ArchiveWriter::classUid(Plan& plan, ClassObject* cls) {
  if (plan.classUid != 0) return plan.classUid;
  std::vector<Number> names{list_.text(std::string_view(plan.name))};
  for (const ClassObject* above = cls->superclass(); above; above = above->superclass()) {
    names.push_back(list_.text(above->name()));
  }
  const Number keys[] = {list_.text(std::string_view("$classname")), list_.text(std::string_view("$classes"))};
  const Number values[] = {names[0], list_.array(names)};
  charge(kArchivedObjectSize + list_.sizeOf(names[0]));
  plan.classUid = written_.size();
  written_.push_back({.object = nullptr, .number = list_.dictionary(keys, values), .extent = {}});
  return plan.classUid;
}

// May be called again after more values were added: the outer containers keep their numbers and are set anew.
std::vector<std::byte> ArchiveWriter::finish() {
  std::vector<Number> objects;
  objects.reserve(written_.size());
  for (const Written& written : written_) objects.push_back(written.number);
  const Number keys[] = {list_.text(std::string_view("$archiver")), list_.text(std::string_view("$objects")),
                         list_.text(std::string_view("$top")), list_.text(std::string_view("$version"))};
  const Number values[] = {list_.text(std::string_view("NSKeyedArchiver")), objects_, top_,
                           list_.integer(std::int64_t{100000})};
  list_.setArray(objects_, objects);
  list_.setDictionary(top_, frame_.keys, frame_.values);
  list_.setDictionary(root_, keys, values);
  std::vector<std::byte> bytes = list_.finish(root_);
  ArchiveBudget budget(bytes.size());
  const auto check = [this](const Decoded<void>& outcome) {
    if (!outcome) fail(outcome.error().detail());
  };
  check(budget.takeRoom(room_ + 2 * bytes.size()));  // each object is read, and each array, once
  check(budget.takeWork(work_));
  return bytes;
}

}  // namespace platform
}  // namespace havrin
