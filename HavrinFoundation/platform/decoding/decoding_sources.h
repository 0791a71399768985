// What a format implements to be decoded from: three small classes. Everything else (types, paths, skipping, nested
// containers) is built on them in decoding.h and behaves alike for every format.
//
//   class CsvField : public ValueSource { ... };        one value
//   class CsvRecord : public KeyedSource { ... };       values under names
//   class CsvTable : public UnkeyedSource { ... };      values in a row, read one after the other
//
//   Station s = decodeValue<Station>(CsvRow(line));     in decoding.h
//
// A source answers errors as values, without a path: the containers above it know where it stands. A source that throws
// all the same is understood. A source may refer to the data it reads; it must not refer to the source that gave it,
// which may be moved or gone. Threads: sources are used from one thread at a time.
#pragma once

#include <HavrinFoundation/platform/decoding/scalar_target.h>
#include <HavrinFoundation/platform/documents/decoding_error.h>
#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace havrin::inline platform {

class KeyedSource;
class UnkeyedSource;

/// What opening a source gives: the source, kept in place when it is small, so that opening one allocates nothing; an
/// error; or neither. Moved, not copied; once moved from, it is only good for being destroyed.
template <class Base>
class SourceBox {
 public:
  SourceBox() {}  // NOLINT(modernize-use-equals-default): defaulted, it would clear the room first
  SourceBox(DecodingError error) : failure_(std::move(error).holder()) {}
  SourceBox(detail::ErrorHolder failure) : failure_(std::move(failure)) {}
  /// Takes `source` as it is, wherever it lives.
  template <class Source>
  requires std::derived_from<std::remove_cvref_t<Source>, Base> SourceBox(Source&& source) {
    using Kept = std::remove_cvref_t<Source>;
    if constexpr (sizeof(Kept) <= kRoom && std::is_nothrow_move_constructible_v<Kept>) {
      source_ = std::construct_at(reinterpret_cast<Kept*>(room_), std::forward<Source>(source));
      move_ = [](Base* from, std::byte* to) -> Base* {
        return std::construct_at(reinterpret_cast<Kept*>(to), std::move(static_cast<Kept&>(*from)));
      };
    } else {
      source_ = new Kept(std::forward<Source>(source));
    }
  }
  SourceBox(SourceBox&& other) noexcept : failure_(std::move(other.failure_)), move_(other.move_) {
    source_ = move_ != nullptr ? move_(other.source_, room_) : std::exchange(other.source_, nullptr);
  }
  SourceBox& operator=(SourceBox&&) = delete;
  ~SourceBox() {
    if (source_ == nullptr) return;
    move_ != nullptr ? std::destroy_at(source_) : delete source_;
  }

  [[nodiscard]] explicit operator bool() const { return source_ != nullptr; }
  [[nodiscard]] Base& operator*() const { return *source_; }
  [[nodiscard]] Base* operator->() const { return source_; }
  /// The error, or nothing.
  [[nodiscard]] detail::ErrorHolder& failure() { return failure_; }

 private:
  static constexpr std::size_t kRoom = 56;

  Base* source_ = nullptr;
  detail::ErrorHolder failure_;
  Base* (*move_)(Base* from, std::byte* to) = nullptr;
  alignas(std::max_align_t) std::byte room_[kRoom];
};

/// One value: a scalar, an object or an array.
class HAVRIN_EXPORT ValueSource {
 public:
  virtual ~ValueSource();
  [[nodiscard]] virtual bool isNull() const = 0;
  /// Hands what stands here to `target`.
  virtual void read(ScalarTarget& target) const = 0;
  /// The object that stands here. An error (valueNotFound for null, else typeMismatch) when there is none.
  [[nodiscard]] virtual SourceBox<KeyedSource> keyed() const = 0;
  /// The array that stands here, at its first element. An error as above when there is none.
  [[nodiscard]] virtual SourceBox<UnkeyedSource> unkeyed() const = 0;

 protected:
  ValueSource() = default;
  ValueSource(const ValueSource&) = default;
  ValueSource(ValueSource&&) = default;
  ValueSource& operator=(const ValueSource&) = default;
  ValueSource& operator=(ValueSource&&) = default;
};

/// Values under names. A name may be asked for any number of times, in any order.
class HAVRIN_EXPORT KeyedSource {
 public:
  virtual ~KeyedSource();
  /// The names, each once, in the order of the data where it has one.
  [[nodiscard]] virtual std::vector<std::string> allKeys() const = 0;
  /// The value under `key`; neither value nor error when there is no such key.
  [[nodiscard]] virtual SourceBox<ValueSource> find(std::string_view key) const = 0;
  /// Hands the value under `key` to `target`: true. False when: there is no such key. A format may do it in one step.
  [[nodiscard]] virtual bool read(std::string_view key, ScalarTarget& target) const;

 protected:
  KeyedSource() = default;
  KeyedSource(const KeyedSource&) = default;
  KeyedSource(KeyedSource&&) = default;
  KeyedSource& operator=(const KeyedSource&) = default;
  KeyedSource& operator=(KeyedSource&&) = default;
};

/// Values in a row, with a position that only `advance` moves.
class HAVRIN_EXPORT UnkeyedSource {
 public:
  virtual ~UnkeyedSource();
  /// How many there are in all. Empty when: the format cannot know yet.
  [[nodiscard]] virtual std::optional<std::size_t> count() const = 0;
  [[nodiscard]] virtual bool isAtEnd() const = 0;
  [[nodiscard]] virtual std::size_t currentIndex() const = 0;
  /// The value at the position. Asked only before the end; asked again, it gives the same value.
  [[nodiscard]] virtual SourceBox<ValueSource> current() = 0;
  /// Moves past the value at the position. Asked only before the end.
  [[nodiscard]] virtual Decoded<void> advance() = 0;
  /// Hands the value at the position to `target` and, when it took it, moves past it. Asked only before the end. A format
  /// may do it in one step.
  virtual void read(ScalarTarget& target);

 protected:
  UnkeyedSource() = default;
  UnkeyedSource(const UnkeyedSource&) = default;
  UnkeyedSource(UnkeyedSource&&) = default;
  UnkeyedSource& operator=(const UnkeyedSource&) = default;
  UnkeyedSource& operator=(UnkeyedSource&&) = default;
};

}  // namespace havrin::inline platform
