// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/ns_url.h>

#include <HavrinFoundation/platform/object/string.h>

#include <functional>
#include <optional>
#include <string>

namespace havrin {
inline namespace platform {

NSURL::NSURL() : url_(URL::fromUncheckedText("")) {}

Strong<NSURL> NSURL::URLWithString(NSString* text) { return alloc<NSURL>()->initWithString(text); }

Strong<NSURL> NSURL::initWithString(NSString* text) { return initWithStringRelativeToURL(text, nullptr); }

Strong<NSURL> NSURL::initWithStringRelativeToURL(NSString* text, const NSURL* base) {
  if (text == nullptr) return nullptr;
  const std::string given = utf8(*text);
  std::optional<URL> url = base ? URL::fromString(given, base->value()) : URL::fromString(given);
  if (!url) return nullptr;
  url_ = *std::move(url);
  return Strong<NSURL>(this);
}

Strong<NSString> NSURL::relativeString() const { return makeString(value().relativeString()); }

Strong<NSString> NSURL::absoluteString() const { return makeString(value().absoluteString()); }

Strong<NSURL> NSURL::baseURL() const {
  std::optional<URL> base = value().baseURL();
  return base ? make<NSURL>(*std::move(base)) : nullptr;
}

Strong<NSURL> NSURL::absoluteURL() const {
  if (!value().baseURL()) return Strong<NSURL>(const_cast<NSURL*>(this));
  return make<NSURL>(value().absoluteURL());
}

bool NSURL::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSURL* url = cast<NSURL>(other);
  return url != nullptr && value() == url->value();
}

// Links of one text from different bases are rare where links are keys.
std::uint64_t NSURL::hash() const { return std::hash<std::string>()(value().relativeString()); }

Strong<NSString> NSURL::description() const {
  std::string text = value().relativeString();
  if (const auto base = value().baseURL()) text += " -- " + base->relativeString();
  return makeString(text);
}

Strong<NSObject> NSURL::copy() const { return Strong<NSObject>(const_cast<NSURL*>(this)); }

template ClassObject* buildClass<NSURL>();

}  // namespace platform
}  // namespace havrin
