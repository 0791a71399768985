// SPDX-License-Identifier: Apache-2.0
// A query and the text of a new item: items that were read are written back as they stood, read again they are the
// same, and a new item reads as what it was made of.
#include <HavrinFoundation/platform/net/url_components.h>
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string_view query = input.substr(0, input.find('\n'));
  const std::string_view rest = input.substr(std::min(query.size() + 1, input.size()));
  const std::string_view name = rest.substr(0, rest.find('\n'));
  std::optional<std::string_view> value;
  if (name.size() < rest.size()) value = rest.substr(name.size() + 1);

  const auto url = URL::fromString("https://h/p?" + std::string(query));
  if (!url) return 0;
  auto components = URLComponents::fromUrl(*url, BaseURL::resolved);
  require(components.has_value());

  auto items = components->queryItems();
  require(items.has_value());
  components->setQueryItems(*items);
  if (components->percentEncodedFragment() || url->relativeString() != "https://h/p?") {
    require(components->url() == url);
  }
  require(components->queryItems() == items);
  for (const URLQueryItem& item : *items) {
    require(isWellFormed(item.name()) && isWellFormed(item.value().value_or("")));
    require(URLQueryItem(item.name(), item.value()) == item);
  }

  const URLQueryItem added(name, value);
  require(added.name() == repaired(name));
  require(added.value().has_value() == value.has_value());
  require(!value || *added.value() == repaired(*value));
  components->appendQueryItem(name, value);
  const auto written = components->url();
  require(written.has_value() && URL::fromString(written->relativeString()) == written);
  items->push_back(added);
  if (items->size() > 1 || !added.text().empty()) require(components->queryItems() == items);
  components->setQueryItems(*items);
  require(components->url() == written);
  return 0;
}
