// SPDX-License-Identifier: Apache-2.0
// Two lines, a base and a reference: what is accepted joins again to its text, and resolving gives a link that stays as
// it is when it is resolved once more.
#include <HavrinFoundation/platform/net/uri.h>
#include <HavrinFoundation/platform/net/url.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

using namespace havrin;

namespace {

void require(bool law) {
  if (!law) std::abort();
}

std::string joined(const UriParts& parts) {
  std::string text;
  if (parts.scheme) text.append(*parts.scheme) += ':';
  if (parts.authority) text.append("//").append(*parts.authority);
  text += parts.path;
  if (parts.query) (text += '?').append(*parts.query);
  if (parts.fragment) (text += '#').append(*parts.fragment);
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string_view baseText = input.substr(0, input.find('\n'));
  const std::string_view text = input.substr(std::min(baseText.size() + 1, input.size()));
  require(joined(splitUri(baseText)) == baseText);
  require(joined(splitUri(text)) == text);

  const URL base = URL::fromUncheckedText(baseText);
  const auto url = URL::fromString(text, base);
  require(url.has_value() == isUriReference(text));
  if (!url) return 0;

  const std::string absolute = url->absoluteString();
  const UriParts parts = splitUri(absolute);
  require(isUriReference(absolute));
  if (!base.isDecomposable() || !splitUri(baseText).scheme) return 0;
  require(parts.scheme.has_value());
  require(parts.authority.has_value() || !parts.path.starts_with("//"));
  const std::string twice = resolvedUri(splitUri(baseText), parts);
  require(resolvedUri(splitUri(baseText), splitUri(twice)) == twice);
  if (!text.empty() && text[0] != '?' && text[0] != '#' && !splitUri(text).scheme) require(twice == absolute);
  return 0;
}
