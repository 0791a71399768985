// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/numbered_tree.h>

#include <utility>

namespace havrin {
inline namespace platform {

NumberedTree::NumberedTree(PropertyList root) : root_(std::move(root)) {
  parts_.push_back({&root_, root_.text()});
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    const PropertyList* const value = parts_[i].value;
    if (value == nullptr) continue;
    parts_[i].firstPart = parts_.size();
    if (const auto* const elements = value->array()) {
      for (const PropertyList& element : *elements) parts_.push_back({&element, element.text()});
    } else if (const auto* const dictionary = value->dictionary()) {
      for (const auto& entry : dictionary->entries()) parts_.push_back({nullptr, &entry.key});
      for (const auto& entry : dictionary->entries()) parts_.push_back({&entry.value, entry.value.text()});
    }
  }
}

BinaryObject NumberedTree::object(std::uint64_t number) const {
  using Kind = BinaryObject::Kind;
  constexpr std::uint64_t kReference = 4;  // roughly its size in the binary form: the same limits apply to both
  const auto bytes = [](const auto& sequence) { return reinterpret_cast<const std::byte*>(sequence.data()); };
  const auto scalar = [](Kind kind, std::uint64_t value) { return BinaryObject(kind, 1 + sizeof value, value); };
  const auto& [value, text, firstPart] = parts_[number];
  if (text != nullptr) return {Kind::utf8Text, 1 + text->size(), text->size(), bytes(*text)};
  if (const auto* const data = value->data()) return {Kind::data, 1 + data->size(), data->size(), bytes(*data)};
  if (const auto* const elements = value->array()) {
    return {Kind::array, 1 + kReference * elements->size(), elements->size(), firstPart};
  }
  if (const auto* const dictionary = value->dictionary()) {
    const std::size_t count = dictionary->entries().size();
    return {Kind::dictionary, 1 + 2 * kReference * count, count, firstPart};
  }
  if (const auto boolean = value->boolean()) return scalar(Kind::boolean, *boolean ? 1 : 0);
  if (const auto integer = value->integer()) return scalar(Kind::integer, static_cast<std::uint64_t>(*integer));
  if (const auto integer = value->unsignedInteger()) return scalar(Kind::unsignedInteger, *integer);
  if (const auto real = value->real()) return scalar(Kind::real, std::bit_cast<std::uint64_t>(*real));
  if (const auto uid = value->uid()) return scalar(Kind::uid, uid->value);
  return scalar(Kind::date, std::bit_cast<std::uint64_t>(value->date()->timeIntervalSinceReferenceDate()));
}

std::optional<std::uint64_t> NumberedTree::uid(std::uint64_t number) const {
  const Part& part = parts_[number];
  const auto uid = part.value != nullptr ? part.value->uid() : std::nullopt;
  return uid ? std::optional(uid->value) : std::nullopt;
}

bool NumberedTree::isText(std::uint64_t number, std::string_view text) const {
  return parts_[number].text != nullptr && *parts_[number].text == text;
}

}  // namespace platform
}  // namespace havrin
