// SPDX-License-Identifier: Apache-2.0
// Colour codes: read into four components, written from a colour, their characters counted.
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <QColor>
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unicode/brkiter.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

using namespace havrin;

const std::string kCode = "#12345678";

void require(bool right) {
  if (!right) std::abort();
}

void readOurs(benchmark::State& state) {
  require(detail::readHexCode(kCode)->red == 0x12 / 255.0);
  for (auto _ : state) {
    benchmark::DoNotOptimize(kCode);
    benchmark::DoNotOptimize(detail::readHexCode(kCode));
  }
}
void readObject(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(kCode);
    benchmark::DoNotOptimize(fromHexString<UIColor>(kCode));
  }
}
void readFromChars(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(kCode);
    std::uint32_t value = 0;
    std::from_chars(kCode.data() + 1, kCode.data() + kCode.size(), value, 16);
    RGBA colour{(value >> 24) / 255.0, ((value >> 16) & 255) / 255.0, ((value >> 8) & 255) / 255.0,
                (value & 255) / 255.0};
    benchmark::DoNotOptimize(colour);
  }
}
void readQt(benchmark::State& state) {
  const QString code = QString::fromStdString(kCode);
  for (auto _ : state) {
    benchmark::DoNotOptimize(code);
    benchmark::DoNotOptimize(QColor(code));
  }
}
void readScanf(benchmark::State& state) {
  for (auto _ : state) {
    unsigned red = 0, green = 0, blue = 0, alpha = 0;
    require(std::sscanf(kCode.c_str(), "#%2x%2x%2x%2x", &red, &green, &blue, &alpha) == 4);
    RGBA colour{red / 255.0, green / 255.0, blue / 255.0, alpha / 255.0};
    benchmark::DoNotOptimize(colour);
  }
}

void writeOurs(benchmark::State& state) {
  const auto colour = fromHexString<UIColor>(kCode);
  require(hexString(*colour) == kCode);
  for (auto _ : state) benchmark::DoNotOptimize(hexString(*colour));
}
void writeFmt(benchmark::State& state) {
  unsigned red = 0x12, green = 0x34, blue = 0x56, alpha = 0x78;
  for (auto _ : state) {
    benchmark::DoNotOptimize(red);
    benchmark::DoNotOptimize(fmt::format("#{:02X}{:02X}{:02X}{:02X}", red, green, blue, alpha));
  }
}
void writeQt(benchmark::State& state) {
  const QColor colour(QString::fromStdString(kCode));
  for (auto _ : state) benchmark::DoNotOptimize(colour.name(QColor::HexArgb));
}
void writePrintf(benchmark::State& state) {
  unsigned red = 0x12, green = 0x34, blue = 0x56, alpha = 0x78;
  for (auto _ : state) {
    benchmark::DoNotOptimize(red);
    char text[16];
    const int length = std::snprintf(text, sizeof text, "#%02X%02X%02X%02X", red, green, blue, alpha);
    benchmark::DoNotOptimize(std::string(text, static_cast<std::size_t>(length)));
  }
}

void countOurs(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(kCode);
    benchmark::DoNotOptimize(characterCount(kCode));
  }
}
void countIcu(benchmark::State& state) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::BreakIterator> iterator(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  require(U_SUCCESS(status));
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(kCode);
  for (auto _ : state) {
    iterator->setText(text);
    std::size_t count = 0;
    while (iterator->next() != icu::BreakIterator::DONE) ++count;
    benchmark::DoNotOptimize(count);
  }
}

BENCHMARK(readOurs)->Name("hex_codes/read/9_characters/ours");
BENCHMARK(readObject)->Name("hex_codes/read_object/9_characters/ours");
BENCHMARK(readFromChars)->Name("hex_codes/read/9_characters/from_chars");
BENCHMARK(readQt)->Name("hex_codes/read/9_characters/qt");
BENCHMARK(readScanf)->Name("hex_codes/read/9_characters/sscanf");
BENCHMARK(writeOurs)->Name("hex_codes/write/9_characters/ours");
BENCHMARK(writeFmt)->Name("hex_codes/write/9_characters/fmt");
BENCHMARK(writeQt)->Name("hex_codes/write/9_characters/qt");
BENCHMARK(writePrintf)->Name("hex_codes/write/9_characters/snprintf");
BENCHMARK(countOurs)->Name("hex_codes/count/9_characters/ours");
BENCHMARK(countIcu)->Name("hex_codes/count/9_characters/icu_reused");

}  // namespace

BENCHMARK_MAIN();
