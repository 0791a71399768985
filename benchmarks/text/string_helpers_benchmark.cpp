// SPDX-License-Identifier: Apache-2.0
// "Does this text hold only characters of that set?", asked of text for which the answer is yes, so that every side goes
// through all of it. "ascii" is the set of 63 name characters; "letters" is text of many scripts against all letters.
#include <HavrinFoundation/platform/unicode/unicode.h>
#include <HavrinFoundation/text/character_sets.h>
#include <HavrinFoundation/text/string_helpers.h>

#include <QRegularExpression>
#include <QString>
#include <absl/strings/ascii.h>
#include <benchmark/benchmark.h>
#include <boost/algorithm/string.hpp>
#include <unicode/uniset.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

namespace {

using havrin::CharacterSet;

constexpr std::string_view kNameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

std::string nameText(std::size_t size) {
  std::mt19937 generator(7);
  std::string text(size, '\0');
  for (char& c : text) c = kNameCharacters[generator() % kNameCharacters.size()];
  return text;
}

// Words of six scripts in random order, here and there a letter outside the first plane.
std::u16string scriptText(std::size_t units) {
  constexpr std::u16string_view kWords[] = {u"station", u"écoute", u"радио", u"ακρόαση",
                                            u"放送局",  u"방송국", u"محطة",  u"\U00010400\U00010428"};
  std::mt19937 generator(7);
  std::u16string text;
  while (text.size() < units) text += kWords[generator() % 50 == 0 ? 7 : generator() % 7];
  text.resize(units, u'a');
  if ((text.back() & 0xFC00) == 0xD800) text.back() = u'a';
  return text;
}

icu::UnicodeSet frozen(const char16_t* pattern) {
  UErrorCode error = U_ZERO_ERROR;
  icu::UnicodeSet set(pattern, error);
  if (U_FAILURE(error)) std::abort();
  set.freeze();
  return set;
}

bool qtIsLetter(char32_t scalar) { return QChar::isLetter(scalar) || QChar::isMark(scalar); }

bool qtOnlyLetters(const QString& text) {
  for (qsizetype i = 0; i < text.size(); ++i) {
    char32_t scalar = text[i].unicode();
    if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      scalar = QChar::surrogateToUcs4(text[i], text[i + 1]);
      ++i;
    }
    if (!qtIsLetter(scalar)) return false;
  }
  return true;
}

template <class Text, class Test>
void measure(const std::string& label, Text text, Test holdsOnly) {
  benchmark::RegisterBenchmark(label.c_str(), [=](benchmark::State& state) {
    if (!holdsOnly(text)) std::abort();
    for (auto _ : state) {
      benchmark::DoNotOptimize(text.data());
      benchmark::DoNotOptimize(holdsOnly(text));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
  });
}

void measureAscii(const std::string& label, std::size_t size) {
  const std::string text = nameText(size);
  const std::string prefix = "string_helpers/ascii/" + label + "/";
  measure(prefix + "ours", text, [set = havrin::validSubhavrinName<CharacterSet>()](const std::string& t) {
    return havrin::containsOnlyCharacters(t, set);
  });
  std::array<bool, 256> table{};
  for (const char c : kNameCharacters) table[static_cast<unsigned char>(c)] = true;
  measure(prefix + "table", text, [table](const std::string& t) {
    return std::all_of(t.begin(), t.end(), [&](char c) { return table[static_cast<unsigned char>(c)]; });
  });
  measure(prefix + "absl", text, [](const std::string& t) {
    return std::all_of(t.begin(), t.end(), [](unsigned char c) { return absl::ascii_isalnum(c) || c == '_'; });
  });
  const auto icuSet = frozen(u"[a-zA-Z0-9_]");
  measure(prefix + "icu_utf8", text, [icuSet](const std::string& t) {
    const auto length = static_cast<int>(t.size());
    return icuSet.spanUTF8(t.data(), length, USET_SPAN_CONTAINED) == length;
  });
  measure(prefix + "icu_utf16", havrin::utf16(text), [icuSet](const std::u16string& t) {
    const auto length = static_cast<int>(t.size());
    return icuSet.span(t.data(), length, USET_SPAN_CONTAINED) == length;
  });
  measure(prefix + "find_first_not_of", text,
          [](const std::string& t) { return t.find_first_not_of(kNameCharacters) == std::string::npos; });
  if (size > 1024) return;
  measure(prefix + "boost", text,
          [](const std::string& t) { return boost::algorithm::all(t, boost::algorithm::is_any_of(kNameCharacters)); });
  const QRegularExpression expression("\\A[a-zA-Z0-9_]*\\z");
  measure(prefix + "qregularexpression", QString::fromStdString(text),
          [expression](const QString& t) { return expression.match(t).hasMatch(); });
}

void measureLetters(const std::string& label, std::size_t units) {
  const std::u16string text = scriptText(units);
  const std::string prefix = "string_helpers/letters/" + label + "/";
  const auto letters = CharacterSet::letters();
  measure(prefix + "ours", text, [letters](const std::u16string& t) { return letters.firstOtherIn(t) == t.size(); });
  measure(prefix + "ours_utf8", havrin::utf8(text),
          [letters](const std::string& t) { return havrin::containsOnlyCharacters(t, letters); });
  const auto icuSet = frozen(u"[[:L:][:M:]]");
  measure(prefix + "icu_utf16", text, [icuSet](const std::u16string& t) {
    const auto length = static_cast<int>(t.size());
    return icuSet.span(t.data(), length, USET_SPAN_CONTAINED) == length;
  });
  measure(prefix + "icu_utf8", havrin::utf8(text), [icuSet](const std::string& t) {
    const auto length = static_cast<int>(t.size());
    return icuSet.spanUTF8(t.data(), length, USET_SPAN_CONTAINED) == length;
  });
  measure(prefix + "qchar", QString::fromStdU16String(text), qtOnlyLetters);
}

[[maybe_unused]] const bool registered = [] {
  measureAscii("16_B", 16);
  measureAscii("1_KiB", 1024);
  measureAscii("1_MiB", 1 << 20);
  measureLetters("1_Ki_units", 1024);
  measureLetters("1_Mi_units", 1 << 20);
  return true;
}();

}  // namespace

BENCHMARK_MAIN();
