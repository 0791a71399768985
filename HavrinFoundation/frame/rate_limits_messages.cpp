// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/frame/rate_limits_messages.h>

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/dispatch/perform_selector.h>
#include <HavrinFoundation/platform/dispatch/thread.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/association.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/platform/object/suggestion.h>

namespace havrin {

namespace {

// Out of line, so that the calls that have an effect do not make room for its texts.
[[gnu::noinline]] void diagnoseUnanswered(const NSObject& self, Selector message, std::string_view sent) {
  const ClassObject& cls = *classOf(self).object();
  report(Finding::unansweredSelector,
         {methodName(cls, sent), cls.name(), message.name(), suggestion(cls, message.name())});
}

bool responds(const NSObject& self, Selector message, std::string_view sent) {
  if (self.respondsToSelector(message)) return true;
  if (diagnosing()) diagnoseUnanswered(self, message, sent);
  return false;
}

void debounce(NSObject& self, Selector message, double delaySeconds) {
  // Moving a deadline runs no code of the program but an override that is asked whether the receiver answers.
  const Strong<NSObject> hold(dispatchClass(&self)->answersByRows() ? nullptr : &self);
  if (!responds(self, message, "h_debounce:delay:")) return;
  reperformSelectorAfterDelay(self, message, delaySeconds);
}

Strong<NSMutableDictionary> throttleTimestamps(NSObject& self) {
  Strong<NSObject> kept = associatedValue(self, selector<"h_throttleTimestamps">);
  if (!isKind<NSMutableDictionary>(kept)) return nullptr;
  return Strong<NSMutableDictionary>::adopt(static_cast<NSMutableDictionary*>(kept.detach()));
}

constexpr MethodRow kTimestampsRow = row<NSObject, "h_throttleTimestamps", throttleTimestamps>();

// Sent as a message only to a class that overrides it: a send holds its receiver, which `throttle` does already.
Strong<NSMutableDictionary> timestampsOf(NSObject& self) {
  const MethodRow* answering = dispatchClass(&self)->row(selector<"h_throttleTimestamps">);
  const bool isOurs = answering && answering->implementation == kTimestampsRow.implementation;
  Strong<NSMutableDictionary> kept = isOurs ? throttleTimestamps(self) : send<"h_throttleTimestamps">(self);
  if (kept) return kept;
  send<"setH_throttleTimestamps:">(self, make<NSMutableDictionary>());
  return send<"h_throttleTimestamps">(self);
}

void throttle(NSObject& self, Selector message, double intervalSeconds) {
  if (!responds(self, message, "h_throttle:delay:")) return;
  const Strong<NSMutableDictionary> timestamps = timestampsOf(self);
  NSString* const name = message.nameString();

  const Strong<NSObject> entry = timestamps ? timestamps->objectForKey(name) : nullptr;
  if (const auto* last = cast<NSNumber>(entry.get())) {
    // Negated so that an elapsed time equal to the interval, and a NaN interval, drop the call.
    if (!(monotonicSeconds() - last->doubleValue() > intervalSeconds)) return;
  }
  performSelectorOnThread(self, message, *NSThread::currentThread(), nullptr, true);
  // The interval begins when the message has returned.
  if (timestamps) timestamps->setObject(makeNumber(monotonicSeconds()), name);
}

void setThrottleTimestamps(NSObject& self, NSMutableDictionary* timestamps) {
  setAssociatedValue(self, selector<"h_throttleTimestamps">, timestamps);
}

constexpr MethodRow kRows[] = {unheldRow<NSObject, "h_debounce:delay:", debounce>(),
                               row<NSObject, "h_throttle:delay:", throttle>(), kTimestampsRow,
                               row<NSObject, "setH_throttleTimestamps:", setThrottleTimestamps>()};

}  // namespace

extern constinit const Category kRateLimits{classObject<NSObject>, "Helpers", kRows, {}};

}  // namespace havrin
