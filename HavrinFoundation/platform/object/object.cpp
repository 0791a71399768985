// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/object.h>

#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/class.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/observed.h>
#include <HavrinFoundation/platform/object/runtime_internal.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace havrin {
inline namespace platform {

namespace {

// In place of a class, for memory in which no object has been constructed yet.
ClassObject* unborn() { return reinterpret_cast<ClassObject*>(std::uintptr_t{1}); }

// Releasing a deep graph nests up to this many destructors; what lies deeper is put on a list that the frame at this
// depth works off.
constexpr std::uint32_t kNested = 32;
struct Destruction {
  std::uint32_t depth = 0;
  std::vector<NSObject*>* deferred = nullptr;
};
constinit thread_local Destruction destruction [[gnu::tls_model("initial-exec")]];

void destroyNow(NSObject* object) noexcept {
  ObjectHeader& header = headerOf(object);
  // Relaxed: the last share was given up with acquire, and a Weak reads 0 and this alike.
  header.strong.store(ObjectHeader::kDestroying, std::memory_order_relaxed);
  if (const Notifications* notifications = dispatchClass(object)->notifications()) notifications->drop(object);
  object->~NSObject();
  header.strong.store(ObjectHeader::kDestroyed, std::memory_order_release);  // for the holders of a Weak
  const auto isLast = [](std::uint32_t weak) { return (weak & ~ObjectHeader::kHasAssociations) == 1; };
  // Where nobody holds a Weak, nobody can come by one any more: nothing needs to be counted down.
  if (isLast(header.weak.load(std::memory_order_acquire)) ||
      isLast(header.weak.fetch_sub(1, std::memory_order_acq_rel))) {
    std::free(&header);
  }
}

}  // namespace

void destroyObject(NSObject* object) noexcept {
  Destruction& state = destruction;
  if (state.depth == kNested) {
    state.deferred->push_back(object);
    return;
  }
  ++state.depth;
  if (state.depth < kNested) {
    destroyNow(object);
  } else {
    std::vector<NSObject*> deferred;
    state.deferred = &deferred;
    destroyNow(object);
    while (!deferred.empty()) {
      NSObject* next = deferred.back();
      deferred.pop_back();
      destroyNow(next);
    }
    state.deferred = nullptr;
  }
  --state.depth;
}

void freeObject(NSObject* object) noexcept { std::free(&headerOf(object)); }

void* NSObject::allocateUnborn(std::size_t size) {
  void* memory = std::malloc(sizeof(ObjectHeader) + size);
  if (!memory) throw std::bad_alloc();
  return new (memory) ObjectHeader(unborn()) + 1;
}

void* NSObject::resizeUnborn(void* memory, std::size_t size) {
  void* resized = std::realloc(static_cast<ObjectHeader*>(memory) - 1, sizeof(ObjectHeader) + size);
  if (!resized) throw std::bad_alloc();
  return static_cast<ObjectHeader*>(resized) + 1;
}

void NSObject::freeUnborn(void* memory) noexcept {
  if (memory) std::free(static_cast<ObjectHeader*>(memory) - 1);
}

NSObject::NSObject(Named made) {
  ObjectHeader& header = headerOf(this);
  if (header.cls.load(std::memory_order_relaxed) != unborn()) [[unlikely]] {
    const int length = static_cast<int>(made.name.size());
    std::fprintf(stderr,
                 "havrin: an object of class %.*s or a subclass was not made by make<T>(), or NSObject is not its "
                 "first base\n",
                 length, made.name.data());
    std::abort();
  }
  header.cls.store(classObject<NSObject>(), std::memory_order_relaxed);
}

void NSObject::releaseAttached() noexcept {
  if (headerOf(this).weak.load(std::memory_order_relaxed) & ObjectHeader::kHasAssociations) releaseAssociations(this);
}

bool NSObject::isEqual(const NSObject* other) const { return this == other; }

std::uint64_t NSObject::hash() const { return reinterpret_cast<std::uintptr_t>(this) >> 4; }

Strong<NSString> NSObject::description() const {
  char address[32];
  std::snprintf(address, sizeof address, ": %p>", static_cast<const void*>(this));
  return makeString("<" + std::string(classOf(*this).name()) + address);
}

Strong<NSString> NSObject::debugDescription() const { return description(); }

Strong<NSObject> NSObject::copy() const {
  throw NSException(NSInvalidArgumentException, methodReason(*this, "copy", "the class cannot be copied"));
}

Strong<NSObject> NSObject::mutableCopy() const {
  throw NSException(NSInvalidArgumentException,
                    methodReason(*this, "mutableCopy", "the class has no mutable counterpart"));
}

bool NSObject::isKindOfClass(Class cls) const { return cls && dispatchClass(this)->inheritsFrom(cls.object()); }

bool NSObject::isMemberOfClass(Class cls) const { return cls && classOf(*this) == cls; }

bool NSObject::conformsToProtocol(const AnyProtocol& protocol) const { return dispatchClass(this)->adopts(protocol); }

bool NSObject::respondsToSelector(Selector selector) const { return dispatchClass(this)->row(selector) != nullptr; }

Strong<NSObject> NSObject::performSelector(Selector selector, NSObject* argument) {
  ClassObject* cls = dispatchClass(this);
  const MethodRow* row = cls->row(selector);
  if (!row && !selector) throwNullArgument(*this, "performSelector:withObject:", "selector");
  if (!row) throwUnrecognized(*cls, selector.name(), this);
  const SignatureInfo& signature = *row->signature;
  if (!signature.call || signature.argumentCount > 1) {
    throw NSException(NSInvalidArgumentException, methodReason(*this, selector.name(),
                                                               "only messages with no argument or with one object or "
                                                               "number"));
  }
  const Strong<NSObject> holdSelf(this);
  const Strong<NSObject> holdArgument(argument);
  Implementation implementation = selector.number() ? cls->cached(selector.number()) : nullptr;
  if (!implementation) implementation = cls->implementation(*row);
  return signature.call(implementation, this, &argument);
}

template ClassObject* buildClass<NSObject>();

}  // namespace platform
}  // namespace havrin
