// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/delayed_performs.h>

#include <algorithm>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

// With fewer cancelled requests than this the heap is not rebuilt.
constexpr std::size_t kFewCancelled = 64;

}  // namespace

DelayedPerforms::~DelayedPerforms() {
  for (const Place& place : heap_) delete place.request;
}

void DelayedPerforms::schedule(const PerformKey& key, DueTime due, Work&& work) {
  ++waiting_;
  if (key.target != nullptr) {
    // The place of a cancelled request of the same name serves again.
    Request* old = firstWith(key.target, key.selector);
    if (old != nullptr && !old->waits()) {
      old->key = key;
      old->work = std::move(work);
      moveTo(old, due);
      return;
    }
  }
  auto* request = new Request{key, due, heap_.size(), nullptr, std::move(work)};
  heap_.push_back({due, request});
  siftUp(request->place);
  if (key.target != nullptr) link(request);
}

bool DelayedPerforms::holds(const void* target, const void* selector) const {
  for (const Request* each = firstWith(target, selector); each != nullptr; each = each->next) {
    if (each->waits() && each->key.argument == nullptr) return true;
  }
  return false;
}

void DelayedPerforms::each(BlockView<void(const PerformKey&, double)> body) const {
  for (const Place& place : heap_) {
    if (place.request->waits()) body(place.request->key, place.request->due.deadline);
  }
}

Work DelayedPerforms::withdraw(Request* request) {
  --waiting_;
  return std::move(request->work);
}

void DelayedPerforms::cancel(const PerformKey& key, BlockView<bool(const void* argument)> sameArgument) {
  // The work is destroyed after the walk, because its destructors may add and cancel requests.
  Work first;
  std::vector<Work> others;
  for (Request* each = firstWith(key.target, key.selector); each != nullptr; each = each->next) {
    if (!each->waits()) continue;
    const void* argument = each->key.argument;
    const bool same =
        argument == key.argument || (argument != nullptr && key.argument != nullptr && sameArgument(argument));
    if (!same) continue;
    if (first) {
      others.push_back(withdraw(each));
    } else {
      first = withdraw(each);
    }
  }
  removeCancelledIfMany();
}

void DelayedPerforms::cancel(const void* target) {
  std::vector<Work> withdrawn;
  for (const Place& place : heap_) {
    if (place.request->key.target == target && place.request->waits()) withdrawn.push_back(withdraw(place.request));
  }
  removeCancelledIfMany();
}

std::optional<DueTime> DelayedPerforms::first() {
  while (!heap_.empty()) {
    Request* request = heap_.front().request;
    if (!request->waits()) {
      removeTop();
    } else if (heap_.front().due < request->due) {
      heap_.front().due = request->due;
      siftDown(0);
    } else {
      return request->due;
    }
  }
  return std::nullopt;
}

Work DelayedPerforms::takeFirst() {
  Work work = withdraw(heap_.front().request);
  removeTop();
  return work;
}

void DelayedPerforms::removeTop() {
  Request* request = heap_.front().request;
  if (request->key.target != nullptr) unlink(request);
  delete request;
  const Place last = heap_.back();
  heap_.pop_back();
  if (!heap_.empty()) {
    put(0, last);
    siftDown(0);
  }
}

void DelayedPerforms::removeCancelledIfMany() {
  const std::size_t cancelled = heap_.size() - waiting_;
  if (cancelled <= kFewCancelled || cancelled <= waiting_) return;
  std::erase_if(heap_, [this](const Place& place) {
    if (place.request->waits()) return false;
    if (place.request->key.target != nullptr) unlink(place.request);
    delete place.request;
    return true;
  });
  for (std::size_t place = 0; place < heap_.size(); ++place) heap_[place].request->place = place;
  for (std::size_t place = heap_.size() / 2; place-- > 0;) siftDown(place);
}

void DelayedPerforms::put(std::size_t place, const Place& entry) {
  heap_[place] = entry;
  entry.request->place = place;
}

void DelayedPerforms::siftUp(std::size_t place) {
  const Place rising = heap_[place];
  while (place > 0) {
    const std::size_t parent = (place - 1) / 2;
    if (!(rising.due < heap_[parent].due)) break;
    put(place, heap_[parent]);
    place = parent;
  }
  put(place, rising);
}

void DelayedPerforms::siftDown(std::size_t place) {
  const Place sinking = heap_[place];
  for (;;) {
    std::size_t child = 2 * place + 1;
    if (child >= heap_.size()) break;
    if (child + 1 < heap_.size() && heap_[child + 1].due < heap_[child].due) ++child;
    if (!(heap_[child].due < sinking.due)) break;
    put(place, heap_[child]);
    place = child;
  }
  put(place, sinking);
}

void DelayedPerforms::link(Request* request) {
  makeRoom();
  const auto& [target, selector, argument] = request->key;
  if (const std::size_t known = positionOf(target, selector); known != HashIndex::kNone) {
    request->next = std::exchange(byKey_[known], request);
    return;
  }
  index_.add(hashOf(target, selector), byKey_.size());
  byKey_.push_back(request);
}

void DelayedPerforms::unlink(Request* request) {
  Request** link = &byKey_[positionOf(request->key.target, request->key.selector)];
  while (*link != request) link = &(*link)->next;
  *link = request->next;
}

// A key whose last request has gone keeps its position until then.
void DelayedPerforms::makeRoom() {
  if (index_.hasRoomFor(byKey_.size() + 1)) return;
  std::erase(byKey_, nullptr);
  index_.reset(byKey_.size() + 1);
  for (std::size_t position = 0; position < byKey_.size(); ++position) {
    const PerformKey& key = byKey_[position]->key;
    index_.add(hashOf(key.target, key.selector), position);
  }
}

}  // namespace platform
}  // namespace havrin
