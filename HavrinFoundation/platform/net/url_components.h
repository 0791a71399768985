// SPDX-License-Identifier: Apache-2.0
// A link taken apart: its parts as they are written, and its query as a list of items that can be read and replaced.
//
//   auto parts = URLComponents::fromUrl(*URL::fromString("https://h/p?a=1&b#f"), BaseURL::ignored);
//   parts->scheme()                          "https"
//   parts->queryItems()                      {a, "1"}, {b, no value}
//   parts->appendQueryItem("q", "x&y");
//   parts->url()->relativeString()           "https://h/p?a=1&b&q=x%26y#f"
//
// Reading: a query is split at "&", each piece at its first "="; names and values are percent-decoded, "+" stays a
// plus. Writing: an item that was read keeps its text; a new one is encoded when it is made. All other parts keep their
// text.
//
// Left out: writing parts other than the query items; decoded readers of parts; making components of nothing.
// Source: RFC 3986, 3.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/net/url.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

/// One name and perhaps a value of a query, borrowed from the query's text.
class HAVRIN_EXPORT URLQueryItemView {
 public:
  /// As it is written.
  [[nodiscard]] std::string_view text() const noexcept { return text_; }

  /// The text before the first "=", or all of it; percent-decoded.
  [[nodiscard]] std::string name() const { return decoded(text_.substr(0, nameLength_)); }

  /// The text behind the first "=", percent-decoded; it may be empty.
  /// Empty when: there is no "=".
  [[nodiscard]] std::optional<std::string> value() const {
    if (nameLength_ == text_.npos) return std::nullopt;
    return decoded(text_.substr(nameLength_ + 1));
  }

  /// Whether name() is `name`.
  [[nodiscard]] bool isNamed(std::string_view name) const {
    return nameHasEscapes_ ? this->name() == name : text_.substr(0, nameLength_) == name;
  }

 private:
  friend class URLComponents;
  friend class URLQueryItem;

  URLQueryItemView(std::string_view text, bool hasEscapes) noexcept
      : text_(text),
        nameLength_(text.find('=')),
        hasEscapes_(hasEscapes),
        nameHasEscapes_(hasEscapes && text.substr(0, nameLength_).find('%') != text.npos) {}

  [[nodiscard]] std::string decoded(std::string_view part) const;

  std::string_view text_;
  std::size_t nameLength_;  // npos: no "="
  bool hasEscapes_;         // whether there is a "%" in the text
  bool nameHasEscapes_;
};

/// One name and perhaps a value of a query. Equal when names and values are, however they were written.
class HAVRIN_EXPORT URLQueryItem {
 public:
  /// A new item. `value` may be empty: the item is then written without a "=".
  URLQueryItem(std::string_view name, std::optional<std::string_view> value);

  /// An item that was read; it keeps its text.
  explicit URLQueryItem(URLQueryItemView read) : text_(read.text()) {}

  /// The item as it is written in a query.
  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  [[nodiscard]] std::string name() const { return view().name(); }
  [[nodiscard]] std::optional<std::string> value() const { return view().value(); }

  [[nodiscard]] friend bool operator==(const URLQueryItem& first, const URLQueryItem& second) {
    return first.text_ == second.text_ || (first.name() == second.name() && first.value() == second.value());
  }

 private:
  [[nodiscard]] URLQueryItemView view() const { return {text_, text_.find('%') != text_.npos}; }

  std::string text_;
};

/// Whether a relative link is resolved against its base before it is taken apart.
enum class BaseURL { ignored, resolved };

class HAVRIN_EXPORT URLComponents {
 public:
  /// The parts of `url`: of its own text, or of its absolute text.
  /// Empty when: the link cannot be decomposed, nor can a base that is to be resolved against.
  [[nodiscard]] static std::optional<URLComponents> fromUrl(const URL& url, BaseURL base);

  /// The parts as they are written, percent-encoded. They live until the components are changed or gone.
  /// Empty when: the link has no such part; an empty one is the empty text.
  [[nodiscard]] std::optional<std::string_view> scheme() const noexcept;
  [[nodiscard]] std::optional<std::string_view> percentEncodedAuthority() const noexcept;
  [[nodiscard]] std::string_view percentEncodedPath() const noexcept;
  [[nodiscard]] std::optional<std::string_view> percentEncodedQuery() const noexcept;
  [[nodiscard]] std::optional<std::string_view> percentEncodedFragment() const noexcept;

  /// The items of the query, in its order. Empty pieces are items too: "a&" gives "a" and one without name and value.
  /// A lone "?" is followed by an empty list.
  /// Empty when: there is no "?".
  [[nodiscard]] std::optional<std::vector<URLQueryItem>> queryItems() const;

  /// Calls `visit(item)` with each item of queryItems() as a URLQueryItemView, without making the list.
  /// Result: whether there is a query.
  template <class Function>
  bool forEachQueryItem(Function&& visit) const {
    const std::optional<std::string_view> query = percentEncodedQuery();
    if (!query || query->empty()) return query.has_value();
    std::size_t escape = query->find('%');  // the first at or behind `begin`
    for (std::size_t begin = 0, end = 0; end != query->npos; begin = end + 1) {
      end = query->find('&', begin);
      visit(URLQueryItemView(query->substr(begin, end - begin), escape < end));
      if (escape < end) escape = query->find('%', end);
    }
    return true;
  }

  /// Writes `items` as the query; an empty list is a lone "?".
  /// Choice: a list of one item with neither name nor value is a lone "?" too, and reads as the empty list.
  void setQueryItems(std::span<const URLQueryItem> items);

  /// Writes the list of queryItems(), or an empty one, followed by the new item.
  void appendQueryItem(std::string_view name, std::optional<std::string_view> value);

  /// Takes the query away, with its "?".
  void removeQuery();

  /// The link of the parts, without a base.
  /// Empty when: no text is left, as when "?a" loses its query.
  [[nodiscard]] std::optional<URL> url() const& { return URLComponents(*this).takeUrl(); }
  [[nodiscard]] std::optional<URL> url() && { return takeUrl(); }

 private:
  explicit URLComponents(std::string text);
  [[nodiscard]] std::optional<URL> takeUrl();

  // Together they follow the grammar. They are taken apart further where a part is asked for.
  std::string beforeFragment_;
  std::string fragment_;   // with its "#"; empty: there is none
  std::size_t queryMark_;  // the position of "?" in beforeFragment_, or its length
};

}  // namespace platform
}  // namespace havrin
