// SPDX-License-Identifier: Apache-2.0
// What a format implements to be decoded from: one class that answers for the values of a document. Everything else
// (types, paths, skipping, nested containers) is built on it in decoding.h and behaves alike for every format.
//
//   class CsvTable : public DecodingSource { ... };
//
//   CsvTable table(text);
//   Decoder decoder(table, table.root());
//   auto stations = decoder.singleValueContainer().decode<std::vector<Station>>();       in decoding.h
//
// A value of the document is a number that the format chooses: an index, or an address. Containers are cursors: such a
// number and a position. A source returns errors as values, without a path, which the containers add; one that throws
// is understood. Threads: one at a time, unless the format says otherwise.
#pragma once

#include <HavrinFoundation/platform/decoding/scalar_target.h>
#include <HavrinFoundation/platform/documents/decoding_error.h>
#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace havrin {
inline namespace platform {

/// A document that is decoded from. It outlives its decoders.
class HAVRIN_EXPORT DecodingSource {
 public:
  /// A value of the document.
  using Value = std::uintptr_t;
  static constexpr Value kNone = ~Value{0};

  /// A position in an object. `state` begins as 0 and belongs to the format: where the next search begins, for
  /// instance.
  struct ObjectCursor {
    Value object = kNone;
    std::uint64_t state[2] = {};
  };
  /// A position in an array. `at` belongs to the format; it begins as `first(array)`.
  struct ArrayCursor {
    Value array = kNone;
    Value at = kNone;
    std::size_t index = 0;
  };
  /// A scalar to be read under a key. Where `read` is set, the value is anything else, and `read` decodes it.
  struct Field {
    std::string_view key;
    ScalarTarget::Type type = ScalarTarget::Type::boolean;
    void* member = nullptr;
    detail::ErrorHolder (*read)(const void* container, std::string_view key, void* member) = nullptr;
  };

  virtual ~DecodingSource();

  /// What `value` is.
  [[nodiscard]] virtual Found kind(Value value) const = 0;
  /// Passes `value` to `target`, which refuses what is not a scalar.
  virtual void read(Value value, ScalarTarget& target) const = 0;

  /// The keys of an object, each once, in the order of the document where it has one.
  [[nodiscard]] virtual std::vector<std::string> allKeys(Value object) const = 0;
  /// The value under `key`, or kNone. A key may be asked for any number of times, in any order.
  [[nodiscard]] virtual Decoded<Value> find(ObjectCursor& cursor, std::string_view key) const = 0;

  /// The number of elements of an array. Empty when: the format cannot know yet.
  [[nodiscard]] virtual std::optional<std::size_t> count(Value array) const = 0;
  /// Where a cursor begins.
  [[nodiscard]] virtual Value first(Value array) const = 0;
  [[nodiscard]] virtual bool isAtEnd(const ArrayCursor& cursor) const = 0;
  /// The element at the cursor, which is not at the end. Asked again, it is the same one.
  [[nodiscard]] virtual Decoded<Value> current(const ArrayCursor& cursor) const = 0;
  /// Moves past the element at the cursor, which is not at the end; `index` is the caller's.
  [[nodiscard]] virtual Decoded<void> advance(ArrayCursor& cursor) const = 0;

  // These are `find`, `current` and `advance` followed by `read`; a format may do them in one step.

  /// Passes the value under `key` to `target`. False when: there is no such key.
  [[nodiscard]] virtual bool readKey(ObjectCursor& cursor, std::string_view key, ScalarTarget& target) const;
  /// Passes the element at the cursor, which is not at the end, to `target` and, when it was taken, moves past it.
  virtual void readElement(ArrayCursor& cursor, ScalarTarget& target) const;
  /// Reads one field after the other; `container` is for those that are not scalars. The first error, with its key.
  [[nodiscard]] virtual detail::ErrorHolder readFields(ObjectCursor& cursor, std::span<const Field> fields,
                                                       const void* container, ErrorDetail detail) const;

 protected:
  DecodingSource() = default;
  DecodingSource(const DecodingSource&) = default;
  DecodingSource& operator=(const DecodingSource&) = default;
};

}  // namespace platform

namespace detail {

// The body of the last one for one field, with the `readKey` of the format in place.
template <class Source>
ErrorHolder readField(const Source& source, DecodingSource::ObjectCursor& cursor, const DecodingSource::Field& field,
                      const void* container, ErrorDetail detail) {
  if (field.read != nullptr) return field.read(container, field.key, field.member);
  ScalarTarget target(field.type, field.member, detail);
  try {
    if (!source.readKey(cursor, field.key, target)) return DecodingError::keyNotFound(field.key).holder();
  } catch (...) {
    target.fail(ErrorHolder::fromCurrentException());
  }
  if (target.failure()) [[unlikely]]
    target.failure().prepend(field.key);
  return std::move(target.failure());
}

}  // namespace detail

}  // namespace havrin
