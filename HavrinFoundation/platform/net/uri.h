// SPDX-License-Identifier: Apache-2.0
// The grammar of links: splitting a URI reference into its parts, checking it, resolving it. Internal to net/.
//
//   splitUri("//h/p?q").authority                         "h"
//   isUriReference("http://h/a b")                        false
//   resolvedUri(splitUri("http://a/b/c"), splitUri("../d"))   "http://a/d"
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// The five parts, as views into the text they were split from. A part that is absent differs from one that is empty.
struct UriParts {
  std::optional<std::string_view> scheme;
  std::optional<std::string_view> authority;
  std::string_view path;
  std::optional<std::string_view> query;
  std::optional<std::string_view> fragment;
};

/// The parts of `text`, whatever it holds; checks nothing. Joined again they are `text`.
/// Source: RFC 3986, appendix B.
[[nodiscard]] UriParts splitUri(std::string_view text) noexcept;

/// Whether `text` follows the grammar of a URI reference to the letter; the empty text does.
/// Source: RFC 3986, 4.1 and appendix A.
[[nodiscard]] bool isUriReference(std::string_view text) noexcept;

/// `reference` seen from `base`, which has a scheme; both follow the grammar.
/// Choice: where removing dot segments would leave a path that begins with "//" behind no authority, it is written as
/// "/.//", so that the path is not taken for an authority.
/// Cost: linear; ".." segments take back what was written, once each.
/// Source: RFC 3986, 5.2.
[[nodiscard]] std::string resolvedUri(const UriParts& base, const UriParts& reference);

}  // namespace platform
}  // namespace havrin
