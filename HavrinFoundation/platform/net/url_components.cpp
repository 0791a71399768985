#include <HavrinFoundation/platform/net/url_components.h>

#include <HavrinFoundation/platform/net/percent_encoding.h>
#include <HavrinFoundation/platform/net/uri.h>

#include <algorithm>

namespace havrin::inline platform {
namespace {

void appendEncodedItem(std::string& text, std::string_view name, std::optional<std::string_view> value) {
  appendQueryEncoded(text, name);
  if (!value) return;
  text += '=';
  appendQueryEncoded(text, *value);
}

}  // namespace

std::string URLQueryItemView::name() const { return percentDecoded(text_.substr(0, nameLength_)); }

std::optional<std::string> URLQueryItemView::value() const {
  if (nameLength_ == text_.npos) return std::nullopt;
  return percentDecoded(text_.substr(nameLength_ + 1));
}

bool URLQueryItemView::isNamed(std::string_view name) const {
  const std::string_view encoded = text_.substr(0, nameLength_);
  return encoded.find('%') == encoded.npos ? encoded == name : percentDecoded(encoded) == name;
}

URLQueryItem::URLQueryItem(std::string_view name, std::optional<std::string_view> value) {
  appendEncodedItem(text_, name, value);
}

std::optional<URLComponents> URLComponents::fromUrl(const URL& url, BaseURL base) {
  if (!url.decomposable_) return std::nullopt;
  if (base == BaseURL::ignored || !url.hasBase()) return URLComponents(url.text_);
  if (!url.base_->decomposable_) return std::nullopt;
  return URLComponents(url.absoluteString());
}

std::optional<std::string_view> URLComponents::scheme() const noexcept { return splitUri(text_).scheme; }

std::optional<std::string_view> URLComponents::percentEncodedAuthority() const noexcept {
  return splitUri(text_).authority;
}

std::string_view URLComponents::percentEncodedPath() const noexcept { return splitUri(text_).path; }

std::optional<std::string_view> URLComponents::percentEncodedQuery() const noexcept { return splitUri(text_).query; }

std::optional<std::string_view> URLComponents::percentEncodedFragment() const noexcept {
  return splitUri(text_).fragment;
}

std::optional<std::vector<URLQueryItem>> URLComponents::queryItems() const {
  std::vector<URLQueryItem> items;
  if (!forEachQueryItem([&items](URLQueryItemView item) { items.emplace_back(item); })) return std::nullopt;
  return items;
}

void URLComponents::setQueryItems(std::span<const URLQueryItem> items) {
  const std::string fragment = takeFragment();
  text_.resize(std::min(text_.find('?'), text_.size()));
  char before = '?';
  for (const URLQueryItem& item : items) {
    (text_ += before) += item.text();
    before = '&';
  }
  if (items.empty()) text_ += '?';
  text_ += fragment;
}

void URLComponents::appendQueryItem(std::string_view name, std::optional<std::string_view> value) {
  const std::string fragment = takeFragment();
  const std::size_t mark = text_.find('?');
  if (mark == text_.npos) {
    text_ += '?';
  } else if (mark + 1 != text_.size()) {
    text_ += '&';
  }
  appendEncodedItem(text_, name, value);
  text_ += fragment;
}

void URLComponents::removeQuery() {
  const std::string fragment = takeFragment();
  text_.resize(std::min(text_.find('?'), text_.size()));
  text_ += fragment;
}

std::optional<URL> URLComponents::url() const {
  if (text_.empty()) return std::nullopt;
  return URL(text_, true);
}

// Cuts the fragment off the text, with its "#": the first one, since it may stand nowhere else.
std::string URLComponents::takeFragment() {
  const std::size_t hash = text_.find('#');
  if (hash == text_.npos) return {};
  std::string fragment = text_.substr(hash);
  text_.resize(hash);
  return fragment;
}

}  // namespace havrin::inline platform
