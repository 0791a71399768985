// SPDX-License-Identifier: Apache-2.0
// NSDate: an instant as an object.
//
//   NSDate::date()->value()                                        Date::now()
//   make<NSDate>(Date())->description()                            "2001-01-01 00:00:00 +0000"
//   earlier->compare(later)                                        NSComparisonResult::NSOrderedAscending
//   alloc<MyDate>()->initWithTimeIntervalSince1970(1.5)            1.5 s after the epoch, as MyDate makes it
//
// A subclass that overrides `timeIntervalSinceReferenceDate` works everywhere a date does.
// Left out: the distant past and future, earlier and later of two, locales' descriptions.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/platform/time/date.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// The order of the receiver and the argument.
enum class NSComparisonResult : std::int64_t { NSOrderedAscending = -1, NSOrderedSame = 0, NSOrderedDescending = 1 };

class HAVRIN_EXPORT NSDate : public Object<NSDate, NSObject> {
 public:
  using Leaf = NSDate;

  /// The current instant.
  NSDate() noexcept : date_(Date::now()) {}
  explicit NSDate(Date date) noexcept : date_(date) {}

  /// A new date of the current instant.
  [[nodiscard]] static Strong<NSDate> date() { return make<NSDate>(); }

  /// Makes an allocated date the instant so many seconds after 2001, or 1970, began in UTC. Result: the date to use in
  /// its place, here itself. The second goes through the first.
  virtual Strong<NSDate> initWithTimeIntervalSinceReferenceDate(double seconds);
  virtual Strong<NSDate> initWithTimeIntervalSince1970(double seconds);

  /// Seconds since 2001-01-01 00:00:00 UTC.
  [[nodiscard]] virtual double timeIntervalSinceReferenceDate() const { return date_.timeIntervalSinceReferenceDate(); }
  [[nodiscard]] virtual double timeIntervalSince1970() const { return value().timeIntervalSince1970(); }

  /// The same instant as a value.
  [[nodiscard]] Date value() const {
    return Date::fromTimeIntervalSinceReferenceDate(timeIntervalSinceReferenceDate());
  }

  /// Whether the receiver is the earlier, the same or the later instant. Throws: NSException (InvalidArgument) for
  /// null.
  [[nodiscard]] virtual NSComparisonResult compare(const NSDate* other) const;

  /// Equal instants.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  /// In UTC: "2024-03-05 14:30:00 +0000".
  [[nodiscard]] Strong<NSString> description() const override;
  [[nodiscard]] Strong<NSObject> copy() const override;

  using Protocols = List<NSSecureCoding>;

 private:
  Date date_;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSDate>();

}  // namespace platform
}  // namespace havrin
