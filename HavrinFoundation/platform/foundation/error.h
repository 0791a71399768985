// SPDX-License-Identifier: Apache-2.0
// NSError: what went wrong, as a domain, a code within it, and details for people and developers.
//
//   const auto error = make<NSError>(NSCocoaErrorDomain, 4864, makeDictionary({{NSDebugDescriptionErrorKey, why}}));
//   error->code()                          4864
//   error->localizedDescription()          "Error 4864 of NSCocoaErrorDomain."
//   error->description()                   "Error Domain=NSCocoaErrorDomain Code=4864 "why" UserInfo={...}"
//
// A function that may fail takes a `Strong<NSError>*`, which may be null, and sets it only on failure.
// Left out: reasons, suggestions and ways of recovery, values that a domain provides later, translated texts.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/object/lazy_string.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// The domain of the layer's own errors: "NSCocoaErrorDomain".
HAVRIN_EXPORT extern constinit const LazyString NSCocoaErrorDomain;
/// The detail that people read: "NSLocalizedDescription".
HAVRIN_EXPORT extern constinit const LazyString NSLocalizedDescriptionKey;
/// The detail that developers read: "NSDebugDescription".
HAVRIN_EXPORT extern constinit const LazyString NSDebugDescriptionErrorKey;
/// The error behind this one: "NSUnderlyingError".
HAVRIN_EXPORT extern constinit const LazyString NSUnderlyingErrorKey;

class HAVRIN_EXPORT NSError : public Object<NSError, NSObject> {
 public:
  /// An error of no domain, with code 0.
  NSError();
  /// Domain and details are copied; null for no details. Throws: NSException (InvalidArgument) for a null domain.
  NSError(NSString* domain, std::int64_t code, NSDictionary* userInfo = nullptr);

  [[nodiscard]] virtual Strong<NSString> domain() const { return domain_; }
  [[nodiscard]] virtual std::int64_t code() const { return code_; }
  /// The details, never null.
  [[nodiscard]] virtual Strong<NSDictionary> userInfo() const { return userInfo_; }

  /// A text for people: the one among the details, else one that names domain and code.
  [[nodiscard]] virtual Strong<NSString> localizedDescription() const;

  /// Equal domains, codes and details.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  /// Domain, code, a text and the details, if there are any. The text is the one for people among the details, else the
  /// one for developers, else localizedDescription().
  [[nodiscard]] Strong<NSString> description() const override;
  /// The error itself.
  [[nodiscard]] Strong<NSObject> copy() const override;

 private:
  Strong<NSString> domain_;
  std::int64_t code_ = 0;
  Strong<NSDictionary> userInfo_;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSError>();

}  // namespace platform
}  // namespace havrin
