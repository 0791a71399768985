// SPDX-License-Identifier: Apache-2.0
// Six campaign parameters read out of a link of eight query items, and appended to one of two. Every side begins with
// the link's text; appending ends with it too.
#include <HavrinFoundation/links/utm_parameters.h>

#include <QString>
#include <QUrl>
#include <QUrlQuery>
#include <benchmark/benchmark.h>
#include <boost/url.hpp>
#include <curl/curl.h>
#include <glib.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace havrin;

const std::string kLink =
    "https://www.example.com/stations/jazz/live?ref=share&utm_campaign=spring_sale&utm_content=banner%20top"
    "&utm_medium=email&utm_name=radio&utm_source=newsletter-2024&utm_term=late+night&id=612345";
const std::string kShortLink = "https://www.example.com/stations/jazz/live?ref=share&id=612345";

constexpr std::string_view kKeys[] = {"utm_campaign", "utm_content", "utm_medium",
                                      "utm_name",     "utm_source",  "utm_term"};
const std::string kValues[] = {"spring_sale", "banner top", "email", "radio", "newsletter-2024", "late+night"};

using Fields = std::optional<std::string>[6];

// Sets the field that `key` names, as every peer's loop over its items does.
template <class Key, class Value>
void setField(Fields& fields, const Key& key, Value&& value) {
  for (std::size_t i = 0; i < 6; ++i) {
    if (key == kKeys[i]) fields[i] = value();
  }
}

void require(bool right) {
  if (!right) std::abort();
}

void requireValues(const Fields& fields) {
  for (std::size_t i = 0; i < 6; ++i) require(fields[i] == kValues[i]);
}

void measureReading(benchmark::State& state, void (*read)(Fields&)) {
  Fields once;
  read(once);
  requireValues(once);
  for (auto _ : state) {
    Fields fields;
    read(fields);
    benchmark::DoNotOptimize(fields);
  }
}

void readOurs(Fields& fields) {
  auto read = fromUrl<UTMParameters>(URL::fromString(kLink));
  std::optional<std::string>* const found[] = {&read->campaign, &read->content, &read->medium,
                                               &read->name,     &read->source,  &read->term};
  for (std::size_t i = 0; i < 6; ++i) fields[i] = std::move(*found[i]);
}

void readCurl(Fields& fields) {
  CURLU* const url = curl_url();
  curl_url_set(url, CURLUPART_URL, kLink.c_str(), 0);
  char* query = nullptr;
  curl_url_get(url, CURLUPART_QUERY, &query, 0);
  std::string_view rest(query);
  while (true) {
    const std::string_view piece = rest.substr(0, rest.find('&'));
    const std::size_t equals = piece.find('=');
    setField(fields, piece.substr(0, equals), [&] {
      int length = 0;
      const std::string_view value = piece.substr(equals + 1);
      char* const decoded = curl_easy_unescape(nullptr, value.data(), static_cast<int>(value.size()), &length);
      std::string text(decoded, static_cast<std::size_t>(length));
      curl_free(decoded);
      return text;
    });
    if (piece.size() == rest.size()) break;
    rest.remove_prefix(piece.size() + 1);
  }
  curl_free(query);
  curl_url_cleanup(url);
}

void readBoostEncoded(Fields& fields) {
  const auto url = boost::urls::parse_uri_reference(kLink).value();
  for (const auto& param : url.encoded_params()) {
    setField(fields, std::string_view(param.key.data(), param.key.size()),
             [&param] { return param.value.decode({}, boost::urls::string_token::return_string()); });
  }
}

void readBoostDecoded(Fields& fields) {
  const auto url = boost::urls::parse_uri_reference(kLink).value();
  for (const auto& param : url.params(boost::urls::encoding_opts(false))) {
    setField(fields, param.key, [&param] { return param.value; });
  }
}

void readQt(Fields& fields) {
  const QUrl url(QString::fromUtf8(kLink.data(), static_cast<qsizetype>(kLink.size())), QUrl::StrictMode);
  const auto items = QUrlQuery(url).queryItems(QUrl::FullyDecoded);
  for (const auto& [name, value] : items) {
    setField(fields, name.toStdString(), [text = &value] { return text->toStdString(); });
  }
}

void readGlib(Fields& fields) {
  GUri* const url = g_uri_parse(kLink.c_str(), G_URI_FLAGS_ENCODED_QUERY, nullptr);
  GHashTable* const items = g_uri_parse_params(g_uri_get_query(url), -1, "&", G_URI_PARAMS_NONE, nullptr);
  for (std::size_t i = 0; i < 6; ++i) {
    if (const void* value = g_hash_table_lookup(items, kKeys[i].data())) fields[i] = static_cast<const char*>(value);
  }
  g_hash_table_unref(items);
  g_uri_unref(url);
}

void measureAppending(benchmark::State& state, std::string (*append)()) {
  const auto read = fromUrl<UTMParameters>(URL::fromString(append()));
  require(read && read->content == kValues[1] && read->source == kValues[4] && read->term == kValues[5]);
  for (auto _ : state) {
    std::string text = append();
    benchmark::DoNotOptimize(text);
  }
}

std::string appendOurs() {
  static const UTMParameters parameters{kValues[0], kValues[1], kValues[2], kValues[3], kValues[4], kValues[5]};
  return adding(*URL::fromString(kShortLink), parameters)->relativeString();
}

std::string appendBoost() {
  boost::urls::url url(kShortLink);
  auto params = url.params();
  for (std::size_t i = 0; i < 6; ++i) {
    params.append({boost::core::string_view(kKeys[i].data(), kKeys[i].size()), kValues[i]});
  }
  return std::string(url.buffer());
}

std::string appendQt() {
  static const QString keys[] = {"utm_campaign", "utm_content", "utm_medium", "utm_name", "utm_source", "utm_term"};
  static const QString values[] = {"spring_sale", "banner%20top", "email", "radio", "newsletter-2024", "late+night"};
  QUrl url(QString::fromUtf8(kShortLink.data(), static_cast<qsizetype>(kShortLink.size())), QUrl::StrictMode);
  QUrlQuery query(url);
  for (std::size_t i = 0; i < 6; ++i) query.addQueryItem(keys[i], values[i]);
  url.setQuery(query);
  return url.toEncoded().toStdString();
}

BENCHMARK_CAPTURE(measureReading, ours, readOurs)->Name("utm_parameters/read/8_items/ours");
BENCHMARK_CAPTURE(measureReading, curl, readCurl)->Name("utm_parameters/read/8_items/curl");
BENCHMARK_CAPTURE(measureReading, boost, readBoostEncoded)->Name("utm_parameters/read/8_items/boost_encoded");
BENCHMARK_CAPTURE(measureReading, boost, readBoostDecoded)->Name("utm_parameters/read/8_items/boost_decoded");
BENCHMARK_CAPTURE(measureReading, qt, readQt)->Name("utm_parameters/read/8_items/qt");
BENCHMARK_CAPTURE(measureReading, glib, readGlib)->Name("utm_parameters/read/8_items/glib");
BENCHMARK_CAPTURE(measureAppending, ours, appendOurs)->Name("utm_parameters/append/6_items/ours");
BENCHMARK_CAPTURE(measureAppending, boost, appendBoost)->Name("utm_parameters/append/6_items/boost");
BENCHMARK_CAPTURE(measureAppending, qt, appendQt)->Name("utm_parameters/append/6_items/qt");

}  // namespace

BENCHMARK_MAIN();
