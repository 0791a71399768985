// SPDX-License-Identifier: Apache-2.0
// A format of the tests' own: a tree of values in memory, decoded through the class that any format implements. It
// overrides only what a format must, so it also tests what the class adds; its habits can be changed to those of awkward
// formats.
#pragma once

#include "../../testing.h"
#include <HavrinFoundation/platform/decoding/decoding.h>

#include <deque>
#include <map>
#include <variant>

namespace value_decoder {

using namespace havrin;

struct Value;
using Array = std::vector<Value>;
using Object = std::map<std::string, Value, std::less<>>;

struct Value {
  using Content = std::variant<std::monostate, bool, std::int64_t, double, std::string, Array, Object>;
  Value() = default;
  Value(bool value) : content(value) {}
  Value(int value) : content(std::int64_t{value}) {}
  Value(double value) : content(value) {}
  Value(const char* value) : content(std::string(value)) {}
  Value(Array value) : content(std::move(value)) {}
  Value(Object value) : content(std::move(value)) {}

  Content content;
};

inline const Value null;

// How a format behaves.
struct Habits {
  bool knowsCount = true;
  bool canStep = true;  // otherwise moving past an element fails
  std::size_t failsFrom =
      SIZE_MAX;         // the element from which on nothing can be opened, as where a stream has broken off
  bool throws = false;  // errors leave as exceptions
};

class ValueSource final : public DecodingSource {
 public:
  explicit ValueSource(Habits habits) : habits_(habits) {}

  static Value valueOf(const value_decoder::Value& value) { return reinterpret_cast<Value>(&value); }

  Found kind(Value value) const override {
    constexpr Found kKinds[] = {Found::null,   Found::boolean, Found::number, Found::number,
                                Found::string, Found::array,   Found::object};
    return kKinds[content(value).index()];
  }
  void read(Value value, ScalarTarget& target) const override {
    struct Hand {
      void operator()(std::monostate) const { target.putNull(); }
      void operator()(bool boolean) const { target.putBoolean(boolean); }
      void operator()(std::int64_t integer) const { target.putInteger(integer); }
      void operator()(double real) const { target.putReal(real); }
      void operator()(const std::string& text) const { target.putText(text); }
      void operator()(const Array&) const { target.refuse(Found::array); }
      void operator()(const Object&) const { target.refuse(Found::object); }
      ScalarTarget& target;
    };
    std::visit(Hand{target}, content(value));
    if (target.failure() && habits_.throws) throw DecodingError(target.failure());
  }

  std::vector<std::string> allKeys(Value value) const override {
    std::vector<std::string> keys;
    for (const auto& [key, member] : object(value)) keys.push_back(key);
    return keys;
  }
  Decoded<Value> find(ObjectCursor& cursor, std::string_view key) const override {
    const auto found = object(cursor.object).find(key);
    return found == object(cursor.object).end() ? kNone : valueOf(found->second);
  }

  std::optional<std::size_t> count(Value value) const override {
    return habits_.knowsCount ? std::optional(array(value).size()) : std::nullopt;
  }
  Value first(Value) const override { return 0; }
  bool isAtEnd(const ArrayCursor& cursor) const override { return cursor.at == array(cursor.array).size(); }
  Decoded<Value> current(const ArrayCursor& cursor) const override {
    if (cursor.at >= habits_.failsFrom) return failure<Value>("the stream has broken off");
    return valueOf(array(cursor.array).at(cursor.at));
  }
  Decoded<void> advance(ArrayCursor& cursor) const override {
    if (!habits_.canStep) return failure<void>("no way to step");
    ++cursor.at;
    return {};
  }

 private:
  template <class T>
  Decoded<T> failure(std::string_view why) const {
    if (habits_.throws) throw DecodingError::dataCorrupted(why);
    return DecodingError::dataCorrupted(why);
  }
  static const value_decoder::Value::Content& content(Value value) {
    return reinterpret_cast<const value_decoder::Value*>(value)->content;
  }
  static const Array& array(Value value) { return std::get<Array>(content(value)); }
  static const Object& object(Value value) { return std::get<Object>(content(value)); }

  Habits habits_;
};

/// A decoder of `value`, which must outlive it.
inline Decoder decoderOf(const Value& value, Habits habits = {}) {
  static std::deque<ValueSource> sources;
  static const UserInfo none;
  return Decoder(sources.emplace_back(habits), ValueSource::valueOf(value), none);
}

}  // namespace value_decoder
