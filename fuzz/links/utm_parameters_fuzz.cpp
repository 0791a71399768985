// SPDX-License-Identifier: Apache-2.0
// A link and six texts: what is appended is what is read, and the rest of the link keeps its text.
#include <HavrinFoundation/links/utm_parameters.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

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

constexpr decltype(UTMParameters::source) UTMParameters::*kFields[] = {
    &UTMParameters::campaign, &UTMParameters::content, &UTMParameters::medium,
    &UTMParameters::name,     &UTMParameters::source,  &UTMParameters::term};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const auto nextLine = [&input]() -> std::optional<std::string_view> {
    if (input.empty()) return std::nullopt;
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(line.size() + 1, input.size()));
    return line;
  };
  const URL url = URL::fromUncheckedText(nextLine().value_or(""));
  const auto before = fromUrl<UTMParameters>(url);
  UTMParameters parameters;
  for (const auto field : kFields) parameters.*field = nextLine();

  URL changed = url;
  add(changed, parameters);
  const auto added = adding(url, parameters);
  require(added.has_value() == url.isDecomposable());
  require(changed == added.value_or(url));
  if (!added) return 0;

  const std::string& text = url.relativeString();
  const std::size_t kept = std::min(text.find('#'), text.size());
  require(added->relativeString().starts_with(text.substr(0, kept)));
  require(added->relativeString().ends_with(text.substr(kept)));
  const auto after = fromUrl<UTMParameters>(added);
  for (const auto field : kFields) {
    std::optional<std::string> expected = before ? (*before).*field : std::nullopt;
    if (parameters.*field) expected = repaired(*(parameters.*field));
    require((after ? (*after).*field : std::nullopt) == expected);
  }
  return 0;
}
