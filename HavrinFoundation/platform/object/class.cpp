// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/class.h>

#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/base/shared_lock.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/category.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/loaded_images.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/runtime_internal.h>
#include <HavrinFoundation/platform/object/string.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <unordered_map>
#include <vector>

namespace havrin {

namespace {

// Such types may share their mangled name with another file's.
bool isOfUnnamedNamespace(std::string_view name) { return name.find("_GLOBAL__N_") != std::string_view::npos; }

}  // namespace

bool detail::isSameType(const std::type_info& first, const std::type_info& second) noexcept {
  if (&first == &second) return true;
  const std::string_view name = first.name();
  return name == second.name() && !isOfUnnamedNamespace(name);
}

inline namespace platform {

// The order of a class's rows: that of the addresses, which compare as integers do.
struct Before {
  bool operator()(const std::pair<const SelectorRecord*, const MethodRow*>& row, const SelectorRecord* record) const {
    return std::less<>()(row.first, record);
  }
};

// The table of classes. Its lock guards every class's rows; nothing foreign runs under it.
struct Runtime {
  SharedLock lock;
  std::unordered_map<std::string, ClassObject*> byKey HAVRIN_THREAD_SAFETY(guarded_by(lock));
  std::vector<ClassObject*> all HAVRIN_THREAD_SAFETY(guarded_by(lock));  // metaclasses and notifying classes included
  std::atomic<std::uint64_t> methodChanges{0};

  static Runtime& shared() {
    static Runtime* const kRuntime = new Runtime;
    return *kRuntime;
  }

  // One class per type. Types in unnamed namespaces go by address.
  static std::string key(const std::type_info& type) {
    std::string name = type.name();
    if (isOfUnnamedNamespace(name)) name += '@' + std::to_string(reinterpret_cast<std::uintptr_t>(&type));
    return name;
  }

  ClassObject* place(std::string_view name, ClassObject* superclass, ClassObject* metaclass)
      HAVRIN_THREAD_SAFETY(requires_capability(lock)) {
    return all.emplace_back(ClassObject::place(name, superclass, metaclass));
  }

  static void insert(ClassObject& cls, std::span<const MethodRow> rows) {
    for (const MethodRow& row : rows) {
      const SelectorRecord* const record = Selector(*row.selector).record();
      const auto place = std::lower_bound(cls.rows_.begin(), cls.rows_.end(), record, Before{});
      if (place != cls.rows_.end() && place->first == record) {
        place->second = &row;
      } else {
        cls.rows_.emplace(place, record, &row);
      }
    }
  }

  static const MethodRow* find(const ClassObject& cls, const SelectorRecord* record) {
    const auto place = std::lower_bound(cls.rows_.begin(), cls.rows_.end(), record, Before{});
    return place != cls.rows_.end() && place->first == record ? place->second : nullptr;
  }

  static const auto& rows(const ClassObject& cls) { return cls.rows_; }
};

std::vector<std::string_view> selectorNames(const ClassObject& cls) {
  std::vector<std::string_view> names;
  const ReaderGuard guard(Runtime::shared().lock);
  for (const ClassObject* each = &cls; each; each = each->superclass()) {
    for (const auto& row : Runtime::rows(*each)) names.emplace_back(row.second->selector->name);
  }
  return names;
}

std::uint64_t methodChanges() { return Runtime::shared().methodChanges.load(std::memory_order_acquire); }

ClassObject::ClassObject(std::string_view name, ClassObject* superclass, ClassObject*)
    : NSObject(Placed{}),
      name_(name),
      superclass_(superclass),
      shown_(this),
      depth_(superclass ? superclass->depth_ + 1 : 0) {
  for (auto& page : methods_) page.store(&noMethods, std::memory_order_relaxed);
  if (superclass) ancestors_ = superclass->ancestors_;
  if (depth_ < kAncestors) ancestors_[depth_] = this;
}

constinit ClassObject::Page<Implementation> ClassObject::noMethods;

namespace {

// What `place` refers to, made by the first thread that finds `missing` there.
template <class T>
T& made(std::atomic<T*>& place, T* missing) {
  T* found = place.load(std::memory_order_acquire);
  if (found != missing) return *found;
  auto fresh = std::make_unique<T>();
  if (place.compare_exchange_strong(found, fresh.get(), std::memory_order_acq_rel)) return *fresh.release();
  return *found;
}

}  // namespace

template <class T>
std::atomic<T>& ClassObject::ownSlot(Pages<T>& pages, std::uint32_t number, Page<T>* missing) {
  return made(pages[number / kPageSlots], missing).entries[number % kPageSlots];
}

ClassObject* ClassObject::place(std::string_view name, ClassObject* superclass, ClassObject* metaclass) {
  void* memory = std::malloc(sizeof(ObjectHeader) + sizeof(ClassObject));
  if (!memory) throw std::bad_alloc();
  auto* header = new (memory) ObjectHeader(metaclass, ObjectHeader::kImmortal);
  return ::new (static_cast<void*>(header + 1)) ClassObject(name, superclass, metaclass);
}

ClassObject* ClassObject::build(const ClassDescription& description) {
  const std::string key = Runtime::key(*description.type);
  Runtime& runtime = Runtime::shared();
  const WriterGuard guard(runtime.lock);
  // Another thread was first, or another library, which has a cache of its own.
  if (const auto found = runtime.byKey.find(key); found != runtime.byKey.end()) return found->second;

  ClassObject* super = description.superclass;
  ClassObject* cls = nullptr;
  ClassObject* meta = nullptr;
  if (super) {
    ClassObject* superMeta = dispatchClass(super);
    ClassObject* rootMeta = dispatchClass(superMeta);
    meta = runtime.place(description.name, superMeta, rootMeta);
    cls = runtime.place(description.name, super, meta);
  } else {
    // The root's metaclass inherits from the root, so that class objects answer what every object answers.
    cls = runtime.place(description.name, nullptr, nullptr);
    meta = runtime.place(description.name, cls, nullptr);
    headerOf(cls).cls.store(meta, std::memory_order_relaxed);
    headerOf(meta).cls.store(meta, std::memory_order_relaxed);
  }
  meta->instance_ = cls;
  cls->hasRowsOfProgram_ = super && super->hasRowsOfProgram_;
  cls->isLeaf_.store(description.isLeaf && !cls->hasRowsOfProgram_, std::memory_order_relaxed);
  cls->answersByRows_ = description.answersByRows;
  cls->create_ = description.create;
  cls->protocols_ = description.protocols;
  Runtime::insert(*cls, description.rows);
  Runtime::insert(*meta, description.classRows);
  runtime.byKey.emplace(key, cls);
  return cls;
}

ClassObject* ClassObject::notifyingClass(const Notifications& notifications) {
  if (ClassObject* made = notifying_.load(std::memory_order_acquire)) return made;
  Runtime& runtime = Runtime::shared();
  const WriterGuard guard(runtime.lock);
  if (ClassObject* made = notifying_.load(std::memory_order_relaxed)) return made;
  ClassObject* made = runtime.place(name_, this, dispatchClass(this));
  made->shown_ = this;
  made->notifications_ = &notifications;
  made->answersByRows_ = answersByRows_;
  notifying_.store(made, std::memory_order_release);
  return made;
}

void ClassObject::addRows(std::span<const MethodRow> rows, bool ofProgram) {
  if (rows.empty()) return;
  Runtime& runtime = Runtime::shared();
  const WriterGuard guard(runtime.lock);
  Runtime::insert(*this, rows);
  if (ofProgram) {
    for (ClassObject* cls : runtime.all) {
      if (!cls->inheritsFrom(this)) continue;
      // A class method of the program makes the class itself run code of the program.
      ClassObject* const leaf = cls->instance_ ? cls->instance_ : cls;
      leaf->hasRowsOfProgram_ = true;
      leaf->isLeaf_.store(false, std::memory_order_relaxed);
    }
  }
  // What has been resolved is emptied, not replaced: a subclass may have rows of its own for the selector.
  for (const MethodRow& row : rows) {
    const std::uint32_t number = Selector(*row.selector).number();
    for (ClassObject* cls : runtime.all) {
      if (!cls->inheritsFrom(this)) continue;
      if (cls->cached(number)) ownSlot(cls->methods_, number, &noMethods).store(nullptr, std::memory_order_release);
      if (auto* asked = cls->askedRows_.load(std::memory_order_acquire)) {
        ownSlot(*asked, number, static_cast<Page<const MethodRow*>*>(nullptr))
            .store(nullptr, std::memory_order_release);
      }
    }
  }
  runtime.methodChanges.fetch_add(1, std::memory_order_release);
}

const MethodRow* ClassObject::findRow(const SelectorRecord* record) const {
  for (const ClassObject* cls = this; cls; cls = cls->superclass_) {
    if (const MethodRow* found = Runtime::find(*cls, record)) return found;
  }
  return nullptr;
}

const MethodRow* ClassObject::row(Selector selector) const {
  const std::uint32_t number = selector.number();
  if (const auto* asked = askedRows_.load(std::memory_order_acquire)) {
    if (const auto* page = (*asked)[number / kPageSlots].load(std::memory_order_acquire)) {
      if (const MethodRow* known = page->entries[number % kPageSlots].load(std::memory_order_acquire)) return known;
    }
  }
  if (!selector) return nullptr;
  const ReaderGuard guard(Runtime::shared().lock);
  const MethodRow* row = findRow(selector.record());
  if (row && number) {
    using Asked = Pages<const MethodRow*>;
    Asked& asked = made(askedRows_, static_cast<Asked*>(nullptr));
    ownSlot(asked, number, static_cast<Page<const MethodRow*>*>(nullptr)).store(row, std::memory_order_release);
  }
  return row;
}

void throwUnrecognized(const ClassObject& cls, std::string_view selector, const NSObject* receiver,
                       std::string_view advice) {
  if (diagnosing()) diagnoseUnanswered(cls, selector);
  char address[32];
  std::snprintf(address, sizeof address, "%p", static_cast<const void*>(receiver));
  throw NSException(NSInvalidArgumentException, methodName(cls, selector) + ": unrecognized selector sent to " +
                                                    (cls.isMetaclass() ? "class " : "instance ") + address +
                                                    std::string(advice));
}

Implementation ClassObject::resolve(const SelectorConstant& constant, const std::type_info& signature,
                                    const NSObject* receiver) {
  const Selector selector(constant);
  {
    const ReaderGuard guard(Runtime::shared().lock);
    const MethodRow* row = findRow(selector.record());
    // The slot is filled under the reader's lock: addRows() empties slots under the writer's, so before this or after.
    if (row && detail::isSameType(*row->signature->type, signature)) {
      const Implementation found = implementation(*row);
      if (const std::uint32_t number = selector.number()) {
        ownSlot(methods_, number, &noMethods).store(found, std::memory_order_release);
      }
      return found;
    }
    if (row) {
      throw NSException(NSInvalidArgumentException,
                        methodReason(*receiver, constant.name,
                                     "the argument or result types of its method differ from those of the declared "
                                     "message"));
    }
  }
  // The sender's headers declare the message, so what is missing is the code that attaches it.
  throwUnrecognized(*this, constant.name, receiver,
                    "; the message is declared, but the image whose category has it is not loaded: is its library "
                    "linked, and kept by the linker? (platform/object/category.h)");
}

bool ClassObject::inheritsDeep(const ClassObject* other) const {
  for (const ClassObject* cls = this; cls; cls = cls->superclass_) {
    if (cls == other) return true;
  }
  return false;
}

bool ClassObject::adopts(const AnyProtocol& protocol) const {
  for (const ClassObject* cls = shown_; cls; cls = cls->superclass_) {
    const ClassObject* adopter = cls->instance_ ? cls->instance_ : cls;
    for (const AnyProtocol* adopted : adopter->protocols_) {
      if (adopted->inheritsFrom(protocol)) return true;
    }
  }
  return false;
}

Strong<NSObject> ClassObject::create() const {
  if (!create_) {
    throw NSException(NSInvalidArgumentException, "the class " + std::string(name_) + " has no default constructor");
  }
  return create_();
}

Strong<NSString> ClassObject::description() const { return makeString(name_); }

Class Class::from(const NSObject* object) {
  if (!object) return {};
  // Only class objects are instances of a metaclass.
  const ClassObject* cls = dispatchClass(object);
  return cls->isMetaclass() ? Class(static_cast<const ClassObject*>(object)) : Class();
}

std::string_view Class::name() const { return object_ ? object_->name() : std::string_view(); }

Strong<NSObject> alloc(Class cls) {
  if (!cls) throw NSException(NSInvalidArgumentException, "alloc: the class is null");
  return cls.object()->create();
}

bool AnyProtocol::inheritsFrom(const AnyProtocol& other) const {
  if (*this == other) return true;
  for (const AnyProtocol* parent : parents_) {
    if (parent->inheritsFrom(other)) return true;
  }
  return false;
}

void throwWrongClass(const NSObject* object, std::string_view wanted) {
  const std::string_view given = object ? classOf(*object).name() : "null";
  throw NSException(NSInvalidArgumentException, "expected " + std::string(wanted) + ", got " + std::string(given));
}

namespace {

// Rows are referred to until the process ends, so the library that has them stays loaded after dlclose.
void pin(const Image& image) {
  Dl_info found{};
  if (dladdr(&image, &found) != 0 && found.dli_fname) dlopen(found.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

}  // namespace

Loader::Loader(const Image& image) {
  pin(image);
  noteImage(image);
  bindConstantStrings(image.strings);
  // Classes are built before any row is added: building takes the runtime's lock itself.
  for (const Category* category : image.categories) {
    ClassObject* cls = category->cls();
    cls->addRows(category->rows, !image.isLibrary);
    dispatchClass(cls)->addRows(category->classRows, !image.isLibrary);
  }
  for (void (*initialiser)() : image.initialisers) initialiser();
}

}  // namespace platform
}  // namespace havrin
