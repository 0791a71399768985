// SPDX-License-Identifier: Apache-2.0
// A document read the plain way, and what each type makes of its values: what lenient decoding is compared with. Shares no
// code with the decoders; numbers are read by the C library.
#pragma once

#include <HavrinFoundation/runtime/lenient_decoding.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace plain {

using namespace havrin;

struct Value {
  enum class Kind { null, boolean, number, text, array, object, other };

  Kind kind = Kind::null;
  bool boolean = false;
  std::string text;               // of a text; of a number that is written as text
  std::optional<double> real;     // of a number that is not
  std::vector<Value> elements;    // of an array; of an object, one for each key
  std::vector<std::string> keys;  // each once
};

inline void require(bool law) {
  if (!law) std::abort();
}

template <class T>
struct Reading;

inline std::optional<double> realIn(const Value& value) {
  if (value.kind != Value::Kind::number) return std::nullopt;
  if (value.real) return value.real;
  const double read = std::strtod(value.text.c_str(), nullptr);
  return std::isinf(read) ? std::nullopt : std::optional(read);
}

template <class T>
requires(std::integral<T> && !std::same_as<T, bool>) struct Reading<T> {
  static std::optional<T> of(const Value& value) {
    if (value.kind != Value::Kind::number) return std::nullopt;
    if (!value.real && value.text.find_first_of(".eE") == std::string::npos) {
      errno = 0;
      if (value.text.front() == '-') {
        const auto read = std::strtoll(value.text.c_str(), nullptr, 10);
        if (errno != 0 || !std::in_range<T>(read)) return std::nullopt;
        return static_cast<T>(read);
      }
      const auto read = std::strtoull(value.text.c_str(), nullptr, 10);
      if (errno != 0 || !std::in_range<T>(read)) return std::nullopt;
      return static_cast<T>(read);
    }
    const auto real = realIn(value);
    if (!real || !(std::fabs(*real) < 0x1p53) || std::floor(*real) != *real) return std::nullopt;
    const auto whole = static_cast<std::int64_t>(*real);
    return std::in_range<T>(whole) ? std::optional(static_cast<T>(whole)) : std::nullopt;
  }
};

template <>
struct Reading<double> {
  static std::optional<double> of(const Value& value) { return realIn(value); }
};

template <>
struct Reading<float> {
  static std::optional<float> of(const Value& value) {
    if (value.kind != Value::Kind::number) return std::nullopt;
    const float read = value.real ? static_cast<float>(*value.real) : std::strtof(value.text.c_str(), nullptr);
    const bool mayBeInfinite = value.real && std::isinf(*value.real);
    return std::isinf(read) && !mayBeInfinite ? std::nullopt : std::optional(read);
  }
};

template <>
struct Reading<bool> {
  static std::optional<bool> of(const Value& value) {
    return value.kind == Value::Kind::boolean ? std::optional(value.boolean) : std::nullopt;
  }
};

template <>
struct Reading<std::string> {
  static std::optional<std::string> of(const Value& value) {
    return value.kind == Value::Kind::text ? std::optional(value.text) : std::nullopt;
  }
};

template <class T>
struct Reading<std::optional<T>> {
  static std::optional<std::optional<T>> of(const Value& value) {
    if (value.kind == Value::Kind::null) return std::optional<T>();
    const auto read = Reading<T>::of(value);
    if (!read) return std::nullopt;
    return std::optional<std::optional<T>>(std::in_place, read);
  }
};

template <class T>
struct Reading<std::vector<T>> {
  static std::optional<std::vector<T>> of(const Value& value) {
    if (value.kind != Value::Kind::array) return std::nullopt;
    std::vector<T> read;
    for (const auto& element : value.elements) {
      auto one = Reading<T>::of(element);
      if (!one) return std::nullopt;
      read.push_back(std::move(*one));
    }
    return read;
  }
};

template <class T>
struct Reading<std::map<std::string, T>> {
  static std::optional<std::map<std::string, T>> of(const Value& value) {
    if (value.kind != Value::Kind::object) return std::nullopt;
    std::map<std::string, T> read;
    for (std::size_t index = 0; index < value.keys.size(); ++index) {
      auto one = Reading<T>::of(value.elements[index]);
      if (!one) return std::nullopt;
      read.emplace(value.keys[index], std::move(*one));
    }
    return read;
  }
};

/// A type with fields of several kinds, under the keys of the dictionaries.
struct Station {
  std::int64_t identifier = 0;
  std::string name;
  std::optional<std::string> song;
  std::vector<std::int8_t> plays;

  using Fields = FieldList<Field<"identifier", &Station::identifier>, Field<"name", &Station::name>,
                           Field<"song", &Station::song>, Field<"plays", &Station::plays>>;
  friend bool operator==(const Station&, const Station&) = default;
};

template <>
struct Reading<Station> {
  static std::optional<Station> of(const Value& value) {
    if (value.kind != Value::Kind::object) return std::nullopt;
    const auto under = [&](std::string_view key) {
      for (std::size_t index = 0; index < value.keys.size(); ++index) {
        if (value.keys[index] == key) return &value.elements[index];
      }
      static const Value absent;
      return &absent;
    };
    const auto identifier = Reading<std::int64_t>::of(*under("identifier"));
    const auto name = Reading<std::string>::of(*under("name"));
    const auto song = Reading<std::optional<std::string>>::of(*under("song"));
    const auto plays = Reading<std::vector<std::int8_t>>::of(*under("plays"));
    if (!identifier || !name || !song || !plays) return std::nullopt;
    return Station{*identifier, *name, *song, *plays};
  }
};

template <class T>
bool areSame(const T& first, const T& second) {
  if constexpr (std::floating_point<T>) {
    return first == second || (std::isnan(first) && std::isnan(second));
  } else {
    return first == second;
  }
}

// Not a number is the same as itself here, in a map too.
template <class T>
bool areSame(const std::map<std::string, T>& first, const std::map<std::string, T>& second) {
  return std::equal(first.begin(), first.end(), second.begin(), second.end(), [](const auto& one, const auto& other) {
    return one.first == other.first && areSame(one.second, other.second);
  });
}

// The law: lenient decoding keeps what a plain reading can read, and reports the rest.
template <class T>
void compareAs(Decoder& decoder, const Value& array) {
  std::vector<T> expected;
  std::vector<std::size_t> skipped;
  for (std::size_t index = 0; index < array.elements.size(); ++index) {
    if (auto one = Reading<T>::of(array.elements[index])) {
      expected.push_back(std::move(*one));
    } else {
      skipped.push_back(index);
    }
  }
  auto container = decoder.unkeyedContainer();
  require(container.count() == array.elements.size());
  const auto silent = decodeSkippingInvalidElements<T>(container);
  require(container.isAtEnd() && container.currentIndex() == array.elements.size());

  auto again = decoder.unkeyedContainer();
  std::size_t reported = 0;
  const auto reporting = decodeSkippingInvalidElements<T>(again, [&](const SkippedElement& element) {
    require(reported < skipped.size() && element.index == skipped[reported++]);
    require(!element.path.empty() && element.path.size() > decoder.codingPath().size());
    require(!element.reason.description().empty());
  });
  require(reported == skipped.size());
  require(silent.size() == expected.size() && reporting.size() == expected.size());
  for (std::size_t index = 0; index < expected.size(); ++index) {
    const T& wanted = expected[index];  // values where vector<bool> has no references
    const T& kept = silent[index];
    const T& keptAgain = reporting[index];
    require(areSame(kept, wanted) && areSame(keptAgain, wanted));
  }
}

/// Compares every array in the document, decoded as every type.
inline void compare(Decoder& decoder, const Value& value) {
  require(decoder.singleValueContainer().decodeNil() == (value.kind == Value::Kind::null));
  if (value.kind == Value::Kind::array) {
    compareAs<std::int64_t>(decoder, value);
    compareAs<std::uint64_t>(decoder, value);
    compareAs<std::int8_t>(decoder, value);
    compareAs<double>(decoder, value);
    compareAs<float>(decoder, value);
    compareAs<bool>(decoder, value);
    compareAs<std::string>(decoder, value);
    compareAs<std::optional<std::int16_t>>(decoder, value);
    compareAs<std::vector<std::optional<std::uint32_t>>>(decoder, value);
    compareAs<std::map<std::string, double>>(decoder, value);
    compareAs<Station>(decoder, value);
    auto container = decoder.unkeyedContainer();
    for (const auto& element : value.elements) {
      Decoder inner = container.superDecoder();
      compare(inner, element);
    }
    require(container.isAtEnd());
  } else if (value.kind == Value::Kind::object) {
    const auto container = decoder.container();
    require(container.allKeys().size() == value.keys.size());
    for (std::size_t index = 0; index < value.keys.size(); ++index) {
      const std::string& key = value.keys[index];
      const Value& entry = value.elements[index];
      const auto array = tryDecodeArraySkippingInvalidElements<std::int64_t>(container, key);
      require(static_cast<bool>(array) == (entry.kind == Value::Kind::array));
      Decoder inner = container.superDecoder(key);
      compare(inner, entry);
    }
  } else {
    require(!decoder.tryContainer() && !decoder.tryUnkeyedContainer());
  }
}

}  // namespace plain
