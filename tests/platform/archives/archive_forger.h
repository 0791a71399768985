// SPDX-License-Identifier: Apache-2.0
// Archives of the binary form, put together object by object.
#pragma once

#include "archive_samples.h"
#include <HavrinFoundation/platform/documents/binary_property_list_writer.h>

namespace havrin::samples {

/// Writes archives of the binary form, objects by UID, without asking whether they make sense.
class Forger {
 public:
  using Number = BinaryPropertyListWriter::Number;
  using Uids = std::vector<std::uint64_t>;

  BinaryPropertyListWriter list;

  Forger() { add(list.text("$null")); }

  [[nodiscard]] std::uint64_t next() const { return objects_.size(); }

  std::uint64_t add(Number object) {
    objects_.push_back(object);
    return objects_.size() - 1;
  }

  std::uint64_t text(std::string_view text) { return add(list.text(text)); }

  Number references(const Uids& uids) {
    std::vector<Number> numbers;
    numbers.reserve(uids.size());
    for (const std::uint64_t uid : uids) numbers.push_back(list.uid(uid));
    return list.array(numbers);
  }

  std::uint64_t classNamed(std::string_view name) {
    const Number keys[] = {list.text("$classname")}, values[] = {list.text(name)};
    return add(list.dictionary(keys, values));
  }

  std::uint64_t instance(std::uint64_t cls, std::vector<std::pair<std::string_view, Number>> values) {
    values.emplace_back("$class", list.uid(cls));
    std::vector<Number> keys, numbers;
    for (const auto& [key, value] : values) {
      keys.push_back(list.text(key));
      numbers.push_back(value);
    }
    return add(list.dictionary(keys, numbers));
  }

  std::uint64_t row(std::uint64_t cls, const Uids& uids) { return instance(cls, {{"NS.objects", references(uids)}}); }

  std::uint64_t dictionary(std::uint64_t cls, const Uids& keys, const Uids& values) {
    return instance(cls, {{"NS.keys", references(keys)}, {"NS.objects", references(values)}});
  }

  // The archive with this object at its root.
  Strong<NSData> finish(std::uint64_t root) {
    const Number top[] = {list.text("root")}, uid[] = {list.uid(root)};
    const Number keys[] = {list.text("$archiver"), list.text("$version"), list.text("$top"), list.text("$objects")};
    const Number values[] = {list.text("NSKeyedArchiver"), list.integer(std::int64_t{100000}),
                             list.dictionary(top, uid), list.array(objects_)};
    return makeData(list.finish(list.dictionary(keys, values)));
  }

 private:
  std::vector<Number> objects_;
};

}  // namespace havrin::samples
