// SPDX-License-Identifier: Apache-2.0
// A link: its text as it was written and, where it is a relative one, the link it is seen from.
//
//   URL::fromString("https://h/p?a=1")                        the link
//   URL::fromString("https://h/my file")                      empty: a blank is not allowed
//   const auto page = URL::fromString("../d", *URL::fromString("https://h/a/b/c"));
//   page->relativeString()                                    "../d"
//   page->absoluteString()                                    "https://h/a/d"
//
// Parts and query items are read and written through url_components.h.
//
// Left out: everything that repairs (invalid characters are refused, not escaped; no internationalised hosts); readers
// of single parts on the link itself; file links and their paths, path extensions, bookmarks, resource values.
// Source: RFC 3986.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace havrin {
inline namespace platform {

/// A value: copies share the base. Two links are equal when their relative texts and their bases are.
class HAVRIN_EXPORT URL {
 public:
  /// The link that `text` writes.
  /// Empty when: the text is empty or not a URI reference. It is none with a blank or another character that must be
  /// escaped, "%" without two hexadecimal digits, a port that is not a number, a malformed "[...]" address, or a ":" in
  /// the first segment of a relative path.
  [[nodiscard]] static std::optional<URL> fromString(std::string_view text);
  static std::optional<URL> fromString(std::nullptr_t) = delete;

  /// The link that `text` writes, seen from `base`. The base is kept in its absolute form; a text with a scheme of its
  /// own keeps none.
  /// Empty when: as above, but the empty text is allowed: it names the base itself, without its fragment.
  [[nodiscard]] static std::optional<URL> fromString(std::string_view text, const URL& base);
  static std::optional<URL> fromString(std::nullptr_t, const URL& base) = delete;

  /// A link of any text, for readers that check less. It cannot be decomposed where `text` is not a URI reference.
  [[nodiscard]] static URL fromUncheckedText(std::string_view text);
  /// The same with a base, which is kept as by `fromString`. A text that is not a URI reference is never resolved.
  [[nodiscard]] static URL fromUncheckedText(std::string_view text, const URL& base);

  /// The text as it was given.
  [[nodiscard]] const std::string& relativeString() const noexcept { return text_; }

  /// The base, itself without a base.
  /// Empty when: there is none.
  [[nodiscard]] std::optional<URL> baseURL() const;

  /// The text resolved against the base; the text as it was given where there is no base, the base has no scheme, or
  /// the text is not a URI reference.
  /// Source: RFC 3986, 5.2.
  [[nodiscard]] std::string absoluteString() const;

  /// The link of absoluteString(), without a base.
  [[nodiscard]] URL absoluteURL() const;

  /// Whether the text is a URI reference, so that it has parts.
  [[nodiscard]] bool isDecomposable() const noexcept { return decomposable_; }

  [[nodiscard]] friend bool operator==(const URL& first, const URL& second) noexcept {
    return first.text_ == second.text_ && first.hasBase() == second.hasBase() &&
           (first.base_ == second.base_ || first.base_->text_ == second.base_->text_);
  }

 private:
  friend class URLComponents;  // makes links of texts that it has composed

  URL(std::string text, bool decomposable, std::shared_ptr<const URL> base = nullptr)
      : text_(std::move(text)), base_(std::move(base)), decomposable_(decomposable) {}

  [[nodiscard]] bool hasBase() const noexcept { return base_ != nullptr; }

  std::string text_;
  std::shared_ptr<const URL> base_;  // has no base of its own
  bool decomposable_;
};

}  // namespace platform
}  // namespace havrin
