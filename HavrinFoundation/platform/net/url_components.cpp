// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/net/url_components.h>

#include <HavrinFoundation/platform/net/percent_encoding.h>
#include <HavrinFoundation/platform/net/uri.h>

#include <algorithm>

namespace havrin {
inline namespace platform {
namespace {

void appendEncodedItem(std::string& text, std::string_view name, std::optional<std::string_view> value) {
  appendQueryEncoded(text, name);
  if (!value) return;
  text += '=';
  appendQueryEncoded(text, *value);
}

}  // namespace

std::string URLQueryItemView::decoded(std::string_view part) const {
  return hasEscapes_ ? percentDecoded(part) : std::string(part);
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

// The fragment is kept apart, so that the end of the query is the end of a text, where items are appended.
URLComponents::URLComponents(std::string text) : beforeFragment_(std::move(text)) {
  if (const std::size_t hash = beforeFragment_.find('#'); hash != beforeFragment_.npos) {
    fragment_ = beforeFragment_.substr(hash);
    beforeFragment_.resize(hash);
  }
  queryMark_ = std::min(beforeFragment_.find('?'), beforeFragment_.size());
}

std::optional<std::string_view> URLComponents::scheme() const noexcept { return splitUri(beforeFragment_).scheme; }

std::optional<std::string_view> URLComponents::percentEncodedAuthority() const noexcept {
  return splitUri(beforeFragment_).authority;
}

std::string_view URLComponents::percentEncodedPath() const noexcept { return splitUri(beforeFragment_).path; }

std::optional<std::string_view> URLComponents::percentEncodedQuery() const noexcept {
  if (queryMark_ == beforeFragment_.size()) return std::nullopt;
  return std::string_view(beforeFragment_).substr(queryMark_ + 1);
}

std::optional<std::string_view> URLComponents::percentEncodedFragment() const noexcept {
  if (fragment_.empty()) return std::nullopt;
  return std::string_view(fragment_).substr(1);
}

std::optional<std::vector<URLQueryItem>> URLComponents::queryItems() const {
  std::vector<URLQueryItem> items;
  if (!forEachQueryItem([&items](URLQueryItemView item) { items.emplace_back(item); })) return std::nullopt;
  return items;
}

// No items give an empty query, which is not the same as none.
void URLComponents::setQueryItems(std::span<const URLQueryItem> items) {
  removeQuery();
  beforeFragment_ += '?';
  for (const URLQueryItem& item : items) {
    if (&item != &items.front()) beforeFragment_ += '&';
    beforeFragment_ += item.text();
  }
}

void URLComponents::appendQueryItem(std::string_view name, std::optional<std::string_view> value) {
  if (queryMark_ == beforeFragment_.size()) {
    beforeFragment_ += '?';
  } else if (queryMark_ + 1 != beforeFragment_.size()) {  // an empty query has no item to be parted from
    beforeFragment_ += '&';
  }
  appendEncodedItem(beforeFragment_, name, value);
}

void URLComponents::removeQuery() { beforeFragment_.resize(queryMark_); }

std::optional<URL> URLComponents::takeUrl() {
  beforeFragment_ += fragment_;
  if (beforeFragment_.empty()) return std::nullopt;
  return URL(std::move(beforeFragment_), true);
}

}  // namespace platform
}  // namespace havrin
