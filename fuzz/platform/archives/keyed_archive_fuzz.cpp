// SPDX-License-Identifier: Apache-2.0
// Bytes of a keyed archive in either form, read with and without secure coding: objects come back or an error says why
// not; what came back can be written, and from then on reading and writing change nothing; nothing leaks.
#include "archived_node.h"
#include <HavrinFoundation/platform/object/exception.h>

#include <span>

using namespace havrin;
using fuzz::Node;
using fuzz::require;

namespace {

struct Manner {
  bool isSecure;
  NSDecodingFailurePolicy policy = NSDecodingFailurePolicy::SetErrorAndReturn;
};

struct Outcome {
  Strong<NSObject> root;
  bool hasFailed = false;
};

void visitValues(NSKeyedUnarchiver& unarchiver) {
  const std::int32_t version = unarchiver.decodeInt32ForKey("version");
  require(version == 0 || unarchiver.containsValueForKey("version"));
  const float real = unarchiver.decodeFloatForKey("real");
  require(!unarchiver.hasFailed() || real == 0);
  const auto bytes = unarchiver.decodeBytesForKey("bytes");
  require(makeData(bytes)->length() == bytes.size());
}

Outcome read(NSData* data, const Manner& manner) {
  Strong<NSError> why;
  const auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(data, &why);
  require(!unarchiver == static_cast<bool>(why));
  if (!unarchiver) {
    require(why->code() == NSCoderReadCorruptError && why->domain()->isEqual(NSCocoaErrorDomain));
    return {};
  }
  unarchiver->setRequiresSecureCoding(manner.isSecure);
  unarchiver->setDecodingFailurePolicy(manner.policy);
  Outcome outcome;
  try {
    outcome.root = unarchiver->decodeObjectOfClasses(fuzz::everyClass(), NSKeyedArchiveRootObjectKey);
    require(!unarchiver->hasFailed() || !outcome.root);
    visitValues(*unarchiver);
  } catch (const NSException& exception) {
    require(manner.policy == NSDecodingFailurePolicy::RaiseException);
    require(exception.name() == NSInvalidUnarchiveOperationException && unarchiver->hasFailed());
  }
  outcome.hasFailed = unarchiver->hasFailed();
  if (outcome.hasFailed) require(unarchiver->error()->description()->length() > 0);
  return outcome;
}

// What has been read can be written; what was written reads as the same, and is then written alike.
void requireStable(NSObject* root, bool isSecure) {
  Strong<NSError> why;
  const auto written = NSKeyedArchiver::archivedDataWithRootObject(root, isSecure, &why);
  require(written && !why);
  const Outcome again = read(written, {.isSecure = isSecure});
  require(again.root && !again.hasFailed);
  const auto rewritten = NSKeyedArchiver::archivedDataWithRootObject(again.root, isSecure, nullptr);
  require(rewritten && rewritten->isEqual(written));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const auto data = makeData(std::as_bytes(std::span(bytes, size)));
  for (const bool isSecure : {false, true}) {
    const Outcome outcome = read(data, {.isSecure = isSecure});
    const Outcome raised = read(data, {.isSecure = isSecure, .policy = NSDecodingFailurePolicy::RaiseException});
    require(outcome.hasFailed == raised.hasFailed && !outcome.root == !raised.root);
    if (outcome.root) requireStable(outcome.root, isSecure);
    Node::letGo();
  }
  require(Node::areGone());
  return 0;
}
