// SPDX-License-Identifier: Apache-2.0
// Classes of an application that keeps its objects in keyed archives, and XML archives made by hand.
#pragma once

#include "tests/objects.h"
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/foundation/set.h>

namespace havrin::samples {

/// A node of a tree that knows its parent: promises secure coding.
class Node : public Object<Node, NSObject> {
 public:
  Strong<NSString> name;
  Strong<NSObject> child;
  Strong<NSObject> parent;
  static inline int alive = 0;
  static inline Strong<NSObject> replacement;  // what is read instead, when there is one

  Node() { ++alive; }
  ~Node() override { --alive; }
  void encodeWithCoder(NSCoder* coder) const {
    coder->encodeObject(name, "name");
    coder->encodeObject(child, "child");
    coder->encodeObject(parent, "parent");
  }
  Strong<NSObject> initWithCoder(NSCoder* coder) {
    name = coder->decodeObject<NSString>("name");
    parent = coder->decodeObject<Node>("parent");
    child = coder->decodeObject<Node>("child");
    return replacement ? replacement : Strong<NSObject>(this);
  }
  using Protocols = List<NSSecureCoding>;
  using Members =
      List<Method<"encodeWithCoder:", &Node::encodeWithCoder>, Method<"initWithCoder:", &Node::initWithCoder>>;
};
inline const ArchivedClass<Node> kArchivedNode("Node");

/// Calls the hooks below while it is read and written; without them, it encodes `inside`. Adopts NSCoding alone.
class Puppet : public Object<Puppet, NSObject> {
 public:
  static inline std::function<Strong<NSObject>(Puppet&, NSCoder&)> initialise;
  static inline std::function<Strong<NSObject>(Puppet&)> awake;
  static inline std::function<void(const Puppet&, NSCoder&)> encode;
  static inline int alive = 0;
  Strong<NSObject> inside;

  Puppet() { ++alive; }
  ~Puppet() override { --alive; }
  void encodeWithCoder(NSCoder* coder) const { encode ? encode(*this, *coder) : coder->encodeObject(inside, "inside"); }
  Strong<NSObject> initWithCoder(NSCoder* coder) { return initialise ? initialise(*this, *coder) : Strong(this); }
  Strong<NSObject> awakeAfterUsingCoder(NSCoder*) { return awake ? awake(*this) : Strong(this); }
  using Protocols = List<NSCoding>;
  using Members =
      List<Method<"encodeWithCoder:", &Puppet::encodeWithCoder>, Method<"initWithCoder:", &Puppet::initWithCoder>,
           Method<"awakeAfterUsingCoder:", &Puppet::awakeAfterUsingCoder>>;
};
inline const ArchivedClass<Puppet> kArchivedPuppet("Puppet");

/// "<dict>...": the reference to an object.
inline std::string uid(std::size_t number) {
  return "<dict><key>CF$UID</key><integer>" + std::to_string(number) + "</integer></dict>";
}

/// The values of an object, of the class whose record is `cls`.
inline std::string object(std::size_t cls, std::string_view values) {
  return "<dict><key>$class</key>" + uid(cls) + std::string(values) + "</dict>";
}

inline std::string key(std::string_view name, std::string_view value) {
  return "<key>" + std::string(name) + "</key>" + std::string(value);
}

inline std::string references(const std::vector<std::size_t>& numbers) {
  std::string text = "<array>";
  for (const std::size_t number : numbers) text += uid(number);
  return text + "</array>";
}

inline std::string classRecord(std::string_view name) {
  return "<dict>" + key("$classname", "<string>" + std::string(name) + "</string>") + "</dict>";
}

/// An XML archive of objects 1, 2, ..., and its top: mostly object 1 at the root.
inline Strong<NSData> xmlArchive(const std::vector<std::string>& objects,
                                 const std::string& top = key("root", uid(1))) {
  std::string text = "<plist><dict>" + key("$archiver", "<string>NSKeyedArchiver</string>") +
                     key("$version", "<integer>100000</integer>") + key("$top", "<dict>" + top + "</dict>") +
                     "<key>$objects</key><array><string>$null</string>";
  for (const std::string& one : objects) text += one;
  return makeData(text + "</array></dict></plist>");
}

/// An unarchiver that lets any class come.
inline Strong<NSKeyedUnarchiver> unarchiverOf(NSData* data) {
  auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(data, nullptr);
  if (unarchiver) unarchiver->setRequiresSecureCoding(false);
  return unarchiver;
}

inline std::string textOf(NSError* error) { return error ? utf8(*error->description()) : "none"; }

/// The classes of an object and of its parts, with their values: distinguishes what equality does not.
inline std::string shapeOf(NSObject* shaped) {
  if (!shaped) return "null";
  std::string text(classOf(*shaped).name());
  const auto addAll = [&text](const NSArray& parts) {
    text += '(';
    for (NSObject* const part : each(&parts)) text += shapeOf(part) + ' ';
    text += ')';
  };
  if (const NSArray* const array = cast<NSArray>(shaped)) {
    addAll(*array);
  } else if (const NSSet* const set = cast<NSSet>(shaped)) {
    addAll(*set->allObjects());
  } else if (const NSOrderedSet* const ordered = cast<NSOrderedSet>(shaped)) {
    addAll(*ordered->array());
  } else if (const NSDictionary* const dictionary = cast<NSDictionary>(shaped)) {
    addAll(*dictionary->allKeys());
    addAll(*dictionary->allValues());
  } else if (const NSNumber* const number = cast<NSNumber>(shaped)) {
    text += std::to_string(static_cast<int>(number->kind())) + utf8(*number->description());
  } else if (!isKind<Node>(shaped)) {
    text += utf8(*shaped->description());
  }
  return text;
}

inline Strong<NSObject> root(NSData* data) {
  const auto unarchiver = unarchiverOf(data);
  if (!unarchiver) return nullptr;
  const auto read = unarchiver->decodeObjectForKey(NSKeyedArchiveRootObjectKey);
  EXPECT_FALSE(unarchiver->error()) << textOf(unarchiver->error());
  return read;
}

/// Why decoding the root fails; "none" when it does not.
inline std::string failureOf(NSData* data) {
  const auto unarchiver = unarchiverOf(data);
  if (!unarchiver) return "no archive";
  const auto read = unarchiver->decodeObjectForKey(NSKeyedArchiveRootObjectKey);
  EXPECT_EQ(read == nullptr, unarchiver->hasFailed());
  return textOf(unarchiver->error());
}

inline Strong<NSData> archived(NSObject* written, bool secure = false) {
  Strong<NSError> error;
  auto data = NSKeyedArchiver::archivedDataWithRootObject(written, secure, &error);
  EXPECT_TRUE(data) << textOf(error);
  return data;
}

}  // namespace havrin::samples
