// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/error.h>

#include <HavrinFoundation/platform/object/argument_errors.h>

#include <string>

namespace havrin {
inline namespace platform {

constinit const LazyString NSCocoaErrorDomain{"NSCocoaErrorDomain"};
constinit const LazyString NSLocalizedDescriptionKey{"NSLocalizedDescription"};
constinit const LazyString NSDebugDescriptionErrorKey{"NSDebugDescription"};
constinit const LazyString NSUnderlyingErrorKey{"NSUnderlyingError"};

namespace {

// The string under a key of the user info; null if there is none, or it is not a string.
Strong<NSString> textUnder(const LazyString& key, const NSError& error) {
  return cast<NSString>(error.userInfo()->objectForKey(key));
}

std::string detailsOf(const NSDictionary& userInfo) {
  std::string text;
  userInfo.forEach([&](NSObject* key, NSObject* value) {
    if (!text.empty()) text += ", ";
    const std::string written = utf8(*value->description());
    text += utf8(*key->description()) + '=' + (cast<NSError>(value) ? '{' + written + '}' : written);
    return true;
  });
  return text;
}

}  // namespace

NSError::NSError() : domain_(makeString("")), userInfo_(make<NSDictionary>()) {}

NSError::NSError(NSString* domain, std::int64_t code, NSDictionary* userInfo) : code_(code) {
  if (domain == nullptr) throwNullArgument(*this, "initWithDomain:code:userInfo:", "domain");
  domain_ = cast<NSString>(domain->copy());
  userInfo_ = userInfo ? Strong<NSDictionary>(cast<NSDictionary>(userInfo->copy())) : make<NSDictionary>();
}

Strong<NSString> NSError::localizedDescription() const {
  if (auto text = textUnder(NSLocalizedDescriptionKey, *this)) return text;
  return makeString("Error " + std::to_string(code()) + " of " + utf8(*domain()) + ".");
}

bool NSError::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSError* error = cast<NSError>(other);
  return error != nullptr && code() == error->code() && domain()->isEqual(error->domain()) &&
         userInfo()->isEqual(error->userInfo());
}

std::uint64_t NSError::hash() const { return domain()->hash() + static_cast<std::uint64_t>(code()); }

Strong<NSString> NSError::description() const {
  Strong<NSString> said = textUnder(NSLocalizedDescriptionKey, *this);
  if (!said) said = textUnder(NSDebugDescriptionErrorKey, *this);
  if (!said) said = localizedDescription();
  std::string text = "Error Domain=" + utf8(*domain()) + " Code=" + std::to_string(code()) + " \"" + utf8(*said) + '"';
  const Strong<NSDictionary> details = userInfo();
  if (details->count() > 0) text += " UserInfo={" + detailsOf(*details) + '}';
  return makeString(text);
}

Strong<NSObject> NSError::copy() const { return Strong<NSObject>(const_cast<NSError*>(this)); }

template ClassObject* buildClass<NSError>();

}  // namespace platform
}  // namespace havrin
