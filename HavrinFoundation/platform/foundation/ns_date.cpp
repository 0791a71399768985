// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/ns_date.h>

#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/platform/time/date_format.h>

namespace havrin {
inline namespace platform {

Strong<NSDate> NSDate::initWithTimeIntervalSinceReferenceDate(double seconds) {
  date_ = Date::fromTimeIntervalSinceReferenceDate(seconds);
  return Strong<NSDate>(this);
}

Strong<NSDate> NSDate::initWithTimeIntervalSince1970(double seconds) {
  return initWithTimeIntervalSinceReferenceDate(
      Date::fromTimeIntervalSince1970(seconds).timeIntervalSinceReferenceDate());
}

NSComparisonResult NSDate::compare(const NSDate* other) const {
  if (other == nullptr) throwNullArgument(*this, "compare:", "other date");
  const Date mine = value();
  const Date theirs = other->value();
  if (mine < theirs) return NSComparisonResult::NSOrderedAscending;
  return mine > theirs ? NSComparisonResult::NSOrderedDescending : NSComparisonResult::NSOrderedSame;
}

bool NSDate::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSDate* date = cast<NSDate>(other);
  return date != nullptr && value() == date->value();
}

std::uint64_t NSDate::hash() const { return std::hash<Date>()(value()); }

Strong<NSString> NSDate::description() const { return makeString(utcText(value())); }

Strong<NSObject> NSDate::copy() const { return Strong<NSObject>(const_cast<NSDate*>(this)); }

template ClassObject* buildClass<NSDate>();

}  // namespace platform
}  // namespace havrin
