// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/property_list_objects.h>

#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/string.h>

#include <unordered_map>

namespace havrin {
inline namespace platform {
namespace {

class Maker {
 public:
  Strong<NSObject> make(const PropertyList& list) {
    using enum PropertyList::Kind;
    switch (list.kind()) {
      case boolean:
        return makeNumber(*list.boolean());
      case integer:
        return list.integer() ? makeNumber(*list.integer()) : makeNumber(*list.unsignedInteger());
      case real:
        return makeNumber(*list.real());
      case text:
        return makeString(*list.text());
      case array:
        return shared(list.array());
      case dictionary:
        return shared(list.dictionary());
      case data:
        return shared(list.data());
      case date:
        return havrin::make<NSDate>(*list.date());
      case uid:  // a reference within an archive, which no class represents
        break;
    }
    return nullptr;
  }

 private:
  // What a list has once becomes one object, however many places refer to it: else a small list could fill the memory.
  template <class Part>
  Strong<NSObject> shared(const Part* part) {
    const auto [found, isNew] = made_.try_emplace(part);
    if (!isNew) return found->second;
    Strong<NSObject> object = makePart(*part);
    made_[part] = object;  // not through `found`, which a rehash may have invalidated
    return object;
  }

  Strong<NSObject> makePart(const PropertyList::Data& bytes) { return makeData(bytes); }

  Strong<NSObject> makePart(const PropertyList::Array& list) {
    const auto array = havrin::make<NSMutableArray>();
    for (const PropertyList& element : list) {
      if (const auto object = make(element)) array->addObject(object);
    }
    return array->copy();
  }

  Strong<NSObject> makePart(const PropertyList::Dictionary& list) {
    const auto dictionary = havrin::make<NSMutableDictionary>();
    for (const auto& [key, value] : list.entries()) dictionary->set(makeString(key), make(value));
    return dictionary->copy();
  }

  std::unordered_map<const void*, Strong<NSObject>> made_;
};

}  // namespace

Strong<NSObject> objectOf(const PropertyList& list) { return Maker().make(list); }

}  // namespace platform
}  // namespace havrin
