// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/links/utm_parameters.h>

#include <HavrinFoundation/platform/net/url_components.h>

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

namespace havrin {
namespace {

struct Parameter {
  std::string_view key;
  detail::OptionalText UTMParameters::*field;
};

constexpr std::array<Parameter, 6> kParameters{{{"utm_campaign", &UTMParameters::campaign},
                                                {"utm_content", &UTMParameters::content},
                                                {"utm_medium", &UTMParameters::medium},
                                                {"utm_name", &UTMParameters::name},
                                                {"utm_source", &UTMParameters::source},
                                                {"utm_term", &UTMParameters::term}}};

}  // namespace

template <>
std::optional<UTMParameters> fromUrl<UTMParameters>(const std::optional<URL>& url) {
  if (!url) return std::nullopt;
  const auto components = URLComponents::fromUrl(*url, BaseURL::ignored);
  if (!components) return std::nullopt;

  std::optional<UTMParameters> found(std::in_place);
  components->forEachQueryItem([&found](URLQueryItemView item) {
    for (const auto& [key, field] : kParameters) {
      // The last of equal keys counts.
      if (item.isNamed(key)) (*found).*field = item.value();
    }
  });
  const bool any = std::any_of(kParameters.begin(), kParameters.end(), [&found](const Parameter& parameter) {
    return ((*found).*parameter.field).has_value();
  });
  if (!any) found.reset();
  return found;
}

std::optional<URL> adding(const URL& url, const UTMParameters& parameters) {
  auto components = URLComponents::fromUrl(url, BaseURL::resolved);
  if (!components) return std::nullopt;
  if (!components->percentEncodedQuery()) components->setQueryItems({});
  for (const auto& [key, field] : kParameters) {
    if (const auto& value = parameters.*field) components->appendQueryItem(key, *value);
  }
  return std::move(*components).url();
}

void add(URL& url, const UTMParameters& parameters) {
  if (auto added = adding(url, parameters)) url = *std::move(added);
}

}  // namespace havrin
