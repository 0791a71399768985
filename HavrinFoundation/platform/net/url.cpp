// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/net/url.h>

#include <HavrinFoundation/platform/net/uri.h>

#include <utility>

namespace havrin {
inline namespace platform {

std::optional<URL> URL::fromString(std::string_view text) {
  if (text.empty() || !isUriReference(text)) return std::nullopt;
  return URL(std::string(text), true);
}

std::optional<URL> URL::fromString(std::string_view text, const URL& base) {
  if (!isUriReference(text)) return std::nullopt;
  if (splitUri(text).scheme) return URL(std::string(text), true);
  return URL(std::string(text), true, std::make_shared<const URL>(base.absoluteURL()));
}

URL URL::fromUncheckedText(std::string_view text) {
  return URL(std::string(text), !text.empty() && isUriReference(text));
}

URL URL::fromUncheckedText(std::string_view text, const URL& base) {
  if (auto url = fromString(text, base)) return *std::move(url);
  return URL(std::string(text), false, std::make_shared<const URL>(base.absoluteURL()));
}

std::optional<URL> URL::baseURL() const { return hasBase() ? std::optional<URL>(*base_) : std::nullopt; }

std::string URL::absoluteString() const {
  if (!hasBase() || !decomposable_ || !base_->decomposable_) return text_;
  const UriParts base = splitUri(base_->text_);
  return base.scheme ? resolvedUri(base, splitUri(text_)) : text_;
}

URL URL::absoluteURL() const { return hasBase() ? URL(absoluteString(), decomposable_) : *this; }

}  // namespace platform
}  // namespace havrin
