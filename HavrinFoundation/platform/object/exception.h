// SPDX-License-Identifier: Apache-2.0
// The platform's exception: a name that programs test, and a reason that people read.
//
//   array->objectAtIndex(9)                          throws NSException, whose name is NSRangeException
//   try { ... } catch (const NSException& e) { show(e.name(), e.reason()); }
//
// Left out: userInfo, call stack symbols.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <exception>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

inline constexpr std::string_view NSInvalidArgumentException = "NSInvalidArgumentException";
inline constexpr std::string_view NSRangeException = "NSRangeException";
inline constexpr std::string_view NSGenericException = "NSGenericException";
inline constexpr std::string_view NSInternalInconsistencyException = "NSInternalInconsistencyException";
inline constexpr std::string_view NSUndefinedKeyException = "NSUnknownKeyException";

class NSObject;

/// A reason that names the method which refuses: "-[NSArray objectAtIndex:]: index 9 beyond count 3". The class is the
/// receiver's, as the program sees it; a class as the receiver gives "+[".
[[nodiscard]] HAVRIN_EXPORT std::string methodReason(const NSObject& receiver, std::string_view selector,
                                                     std::string_view problem);

class HAVRIN_EXPORT NSException final : public std::exception {
 public:
  NSException(std::string_view name, std::string_view reason);
  ~NSException() override;

  /// One of the constants above, or an application's own.
  [[nodiscard]] const std::string& name() const { return name_; }
  /// What was wrong: the receiver, the selector or the index.
  [[nodiscard]] const std::string& reason() const { return reason_; }
  /// "name: reason".
  [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string name_;
  std::string reason_;
  std::string text_;
};

}  // namespace platform
}  // namespace havrin
