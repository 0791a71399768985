// SPDX-License-Identifier: Apache-2.0
// Two lines, a base and a reference: what is accepted joins again to its text, resolving gives a link that stays as it is
// when it is resolved once more, and both agree with an independent library (uriparser).
#include <HavrinFoundation/platform/net/uri.h>
#include <HavrinFoundation/platform/net/url.h>

#include <uriparser/Uri.h>

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

class Oracle {
 public:
  explicit Oracle(std::string_view text) {
    const char* error = nullptr;
    good_ = uriParseSingleUriExA(&uri_, text.data(), text.data() + text.size(), &error) == URI_SUCCESS;
  }
  Oracle(const Oracle&) = delete;
  Oracle& operator=(const Oracle&) = delete;
  ~Oracle() {
    if (good_) uriFreeUriMembersA(&uri_);
  }
  [[nodiscard]] bool accepts() const { return good_; }

  [[nodiscard]] std::optional<std::string> resolved(const Oracle& reference) const {
    UriUriA result;
    std::optional<std::string> text;
    if (uriAddBaseUriA(&result, &reference.uri_, &uri_) == URI_SUCCESS) {
      int length = 0;
      uriToStringCharsRequiredA(&result, &length);
      text.emplace(static_cast<std::size_t>(length) + 1, '\0');
      uriToStringA(text->data(), &result, length + 1, nullptr);
      text->pop_back();
    }
    uriFreeUriMembersA(&result);
    return text;
  }

 private:
  UriUriA uri_;
  bool good_;
};

// Where the other library resolves differently, and why ours is right.
bool mayDiffer(const UriParts& base, const UriParts& reference, const UriParts& ours, const UriParts& theirs) {
  // It writes addresses in brackets in full.
  if (ours.authority && ours.authority->find('[') != ours.authority->npos) return true;
  // It leaves a "." segment, or adds one, where a path would begin with "//". The standard removes them all; ours keeps
  // one only where the path would otherwise be taken for an authority.
  if (ours.path.starts_with("/.//") || theirs.path.find("/./") != theirs.path.npos) return true;
  // It keeps a path without a leading slash so where dot segments empty it; the standard's steps leave a slash.
  return !ours.authority && !reference.path.starts_with('/') && (reference.scheme || !base.path.starts_with('/'));
}

void compareWithOracle(std::string_view base, std::string_view text) {
  const Oracle from(base);
  const Oracle to(text);
  require(to.accepts() == isUriReference(text));
  if (!to.accepts() || !from.accepts() || !splitUri(base).scheme) return;
  const std::string ours = resolvedUri(splitUri(base), splitUri(text));
  const auto theirs = from.resolved(to);
  require(theirs.has_value());
  require(ours == *theirs || mayDiffer(splitUri(base), splitUri(text), splitUri(ours), splitUri(*theirs)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string_view baseText = input.substr(0, input.find('\n'));
  const std::string_view text = input.substr(std::min(baseText.size() + 1, input.size()));
  require(joined(splitUri(baseText)) == baseText);
  require(joined(splitUri(text)) == text);
  compareWithOracle(baseText, text);

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
