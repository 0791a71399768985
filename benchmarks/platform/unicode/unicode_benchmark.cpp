// SPDX-License-Identifier: Apache-2.0
// Characters counted as a reader counts them: a colour code of nine units, and text of many scripts.
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <QString>
#include <QTextBoundaryFinder>
#include <benchmark/benchmark.h>
#include <unicode/brkiter.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

std::unique_ptr<icu::BreakIterator> newIterator() {
  UErrorCode error = U_ZERO_ERROR;
  std::unique_ptr<icu::BreakIterator> result(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
  if (U_FAILURE(error)) std::abort();
  return result;
}

std::size_t countBreaks(icu::BreakIterator& iterator, const std::string& text) {
  UErrorCode error = U_ZERO_ERROR;
  UText source = UTEXT_INITIALIZER;
  utext_openUTF8(&source, text.data(), static_cast<std::int64_t>(text.size()), &error);
  iterator.setText(&source, error);
  std::size_t count = 0;
  while (iterator.next() != icu::BreakIterator::DONE) ++count;
  utext_close(&source);
  return count;
}

std::size_t ours(const std::string& text) { return havrin::characterCount(text); }

std::size_t icuReused(const std::string& text) {
  static const auto& iterator = *newIterator().release();
  return countBreaks(const_cast<icu::BreakIterator&>(iterator), text);
}

std::size_t icuNew(const std::string& text) { return countBreaks(*newIterator(), text); }

std::size_t qt(const std::string& text) {
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme,
                             QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
  std::size_t count = 0;
  while (finder.toNextBoundary() != -1) ++count;
  return count;
}

void measure(benchmark::State& state, std::size_t (*count)(const std::string&), const std::string& text) {
  if (count(text) != ours(text)) std::abort();
  for (auto _ : state) benchmark::DoNotOptimize(count(text));
}

const std::string kCode = "#FF8800AA";
const std::string kScripts = [] {
  std::string text;
  for (int i = 0; i < 20; ++i)
    text += "station écoute радио e\u0301 放送局 방송국 👍🏽 👨‍👩‍👧 🇫🇷\r\n";
  return text;
}();

BENCHMARK_CAPTURE(measure, ours, ours, kCode)->Name("unicode/count/colour_code/ours");
BENCHMARK_CAPTURE(measure, icu, icuReused, kCode)->Name("unicode/count/colour_code/icu_reused");
BENCHMARK_CAPTURE(measure, icu_new, icuNew, kCode)->Name("unicode/count/colour_code/icu_new");
BENCHMARK_CAPTURE(measure, qt, qt, kCode)->Name("unicode/count/colour_code/qt");
BENCHMARK_CAPTURE(measure, ours, ours, kScripts)->Name("unicode/count/scripts/ours");
BENCHMARK_CAPTURE(measure, icu, icuReused, kScripts)->Name("unicode/count/scripts/icu_reused");
BENCHMARK_CAPTURE(measure, qt, qt, kScripts)->Name("unicode/count/scripts/qt");

}  // namespace

BENCHMARK_MAIN();
