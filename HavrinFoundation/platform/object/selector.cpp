// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/selector.h>

#include <HavrinFoundation/platform/base/shared_lock.h>
#include <HavrinFoundation/platform/object/class.h>
#include <HavrinFoundation/platform/object/string.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace havrin {
inline namespace platform {

struct SelectorRecord {
  SelectorRecord(std::string text, std::uint32_t place) : name(std::move(text)), number(place) {}

  const std::string name;
  const std::uint32_t number;                      // 0 for selectors beyond the dispatch tables
  mutable std::atomic<NSString*> string{nullptr};  // the name as an object, made when it is first asked for
};

namespace {

// Grows with the program's selectors and is never destroyed: selectors are used until the process ends.
struct SelectorTable {
  SharedLock lock;
  std::unordered_map<std::string_view, std::unique_ptr<SelectorRecord>> byName HAVRIN_THREAD_SAFETY(guarded_by(lock));
  // In pieces, which are made as the numbers reach them.
  struct Piece {
    std::atomic<const SelectorRecord*> records[ClassObject::kPageSlots]{};
  };
  std::atomic<Piece*> pieces[ClassObject::kPages]{};

  std::atomic<const SelectorRecord*>& byNumber(std::uint32_t number) {
    return pieces[number / ClassObject::kPageSlots]
        .load(std::memory_order_acquire)
        ->records[number % ClassObject::kPageSlots];
  }
};

SelectorTable& table() {
  static SelectorTable* const kTable = new SelectorTable;
  return *kTable;
}

const SelectorRecord* find(std::string_view name) {
  SelectorTable& selectors = table();
  const ReaderGuard guard(selectors.lock);
  const auto found = selectors.byName.find(name);
  return found == selectors.byName.end() ? nullptr : found->second.get();
}

const SelectorRecord* intern(std::string_view name) {
  if (const SelectorRecord* record = find(name)) return record;
  SelectorTable& selectors = table();
  const WriterGuard guard(selectors.lock);
  if (const auto found = selectors.byName.find(name); found != selectors.byName.end()) return found->second.get();
  const std::size_t next = selectors.byName.size() + 1;
  auto record = std::make_unique<SelectorRecord>(std::string(name),
                                                 next < ClassObject::kSlots ? static_cast<std::uint32_t>(next) : 0);
  const SelectorRecord* result = record.get();
  // The piece before the record, the record before the number reaches a constant: readers of a number find both.
  if (result->number) {
    auto& piece = selectors.pieces[result->number / ClassObject::kPageSlots];
    if (!piece.load(std::memory_order_relaxed)) piece.store(new SelectorTable::Piece, std::memory_order_release);
    selectors.byNumber(result->number).store(result, std::memory_order_release);
  }
  selectors.byName.emplace(result->name, std::move(record));
  return result;
}

}  // namespace

Selector::Selector(const SelectorConstant& constant) {
  if (const std::uint32_t number = constant.number.load(std::memory_order_acquire)) {
    record_ = table().byNumber(number).load(std::memory_order_acquire);
    return;
  }
  record_ = intern(constant.name);
  constant.number.store(record_->number, std::memory_order_release);
}

Selector Selector::named(std::string_view name) { return Selector(intern(name)); }

Selector Selector::known(std::string_view name) { return Selector(find(name)); }

std::string_view Selector::name() const { return record_ ? std::string_view(record_->name) : std::string_view(); }

NSString* Selector::nameString() const {
  if (!record_) return nullptr;
  if (NSString* made = record_->string.load(std::memory_order_acquire)) return made;
  // Not under the table's lock: making a string may intern selectors.
  Strong<NSString> mine = makeString(record_->name);
  NSString* theirs = nullptr;
  if (!record_->string.compare_exchange_strong(theirs, mine.get(), std::memory_order_acq_rel)) return theirs;
  return mine.detach();
}

std::uint32_t Selector::number() const { return record_ ? record_->number : 0; }

}  // namespace platform
}  // namespace havrin
