// A format of the tests' own: a tree of values in memory, decoded through the three source classes that any format
// implements. It uses only what a format must implement, so it also tests what the base classes add; its habits can be
// changed to those of awkward formats.
#pragma once

#include <HavrinFoundation/platform/decoding/decoding.h>

#include <map>
#include <variant>

#include "../../testing.h"

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

template <class Failure>
Failure failing(const Habits& habits, DecodingError error) {
  if (habits.throws) throw error;
  return error;
}

class ValueValue final : public ValueSource {
 public:
  ValueValue(const Value& value, Habits habits) : value_(&value), habits_(habits) {}

  bool isNull() const override { return std::holds_alternative<std::monostate>(value_->content); }
  void read(ScalarTarget& target) const override {
    struct Hand {
      void operator()(std::monostate) const { target.putNull(); }
      void operator()(bool value) const { target.putBoolean(value); }
      void operator()(std::int64_t value) const { target.putInteger(value); }
      void operator()(double value) const { target.putReal(value); }
      void operator()(const std::string& value) const { target.putText(value); }
      void operator()(const Array&) const { target.refuse(Found::array); }
      void operator()(const Object&) const { target.refuse(Found::object); }
      ScalarTarget& target;
    };
    std::visit(Hand{target}, value_->content);
    if (target.failure() && habits_.throws) throw DecodingError(target.failure());
  }
  SourceBox<KeyedSource> keyed() const override;
  SourceBox<UnkeyedSource> unkeyed() const override;

 private:
  const Value* value_;
  Habits habits_;
};

class ValueObject final : public KeyedSource {
 public:
  ValueObject(const Object& object, Habits habits) : object_(&object), habits_(habits) {}

  std::vector<std::string> allKeys() const override {
    std::vector<std::string> keys;
    for (const auto& [key, value] : *object_) keys.push_back(key);
    return keys;
  }
  SourceBox<ValueSource> find(std::string_view key) const override {
    const auto found = object_->find(key);
    if (found == object_->end()) return {};
    return ValueValue(found->second, habits_);
  }

 private:
  const Object* object_;
  Habits habits_;
};

class ValueArray final : public UnkeyedSource {
 public:
  ValueArray(const Array& array, Habits habits) : array_(&array), habits_(habits) {}

  std::optional<std::size_t> count() const override {
    return habits_.knowsCount ? std::optional(array_->size()) : std::nullopt;
  }
  bool isAtEnd() const override { return index_ == array_->size(); }
  std::size_t currentIndex() const override { return index_; }
  SourceBox<ValueSource> current() override {
    if (index_ >= habits_.failsFrom) {
      return failing<SourceBox<ValueSource>>(habits_, DecodingError::dataCorrupted("the stream has broken off"));
    }
    return ValueValue(array_->at(index_), habits_);
  }
  Decoded<void> advance() override {
    if (!habits_.canStep) return failing<Decoded<void>>(habits_, DecodingError::dataCorrupted("no way to step"));
    ++index_;
    return {};
  }

 private:
  const Array* array_;
  Habits habits_;
  std::size_t index_ = 0;
  // Larger than what a box keeps in place, so that sources on the heap are tested too.
  [[maybe_unused]] char ballast_[64] = {};
};

inline SourceBox<KeyedSource> ValueValue::keyed() const {
  if (const auto* const object = std::get_if<Object>(&value_->content)) return ValueObject(*object, habits_);
  if (isNull()) return failing<SourceBox<KeyedSource>>(habits_, DecodingError::valueNotFound("an object"));
  return failing<SourceBox<KeyedSource>>(habits_, DecodingError::typeMismatch("an object", Found::number));
}

inline SourceBox<UnkeyedSource> ValueValue::unkeyed() const {
  if (const auto* const array = std::get_if<Array>(&value_->content)) return ValueArray(*array, habits_);
  if (isNull()) return failing<SourceBox<UnkeyedSource>>(habits_, DecodingError::valueNotFound("an array"));
  return failing<SourceBox<UnkeyedSource>>(habits_, DecodingError::typeMismatch("an array", Found::object));
}

/// A decoder of `value`, which must outlive it.
inline Decoder decoderOf(const Value& value, Habits habits = {}) { return Decoder(ValueValue(value, habits)); }

}  // namespace value_decoder
