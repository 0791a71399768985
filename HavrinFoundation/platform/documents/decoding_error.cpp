// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/decoding_error.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>
#include <vector>

namespace havrin {

namespace detail {

// The contents of an error. Shared by its copies; modified only while there is a single owner.
struct DecodingErrorRecord {
  DecodingErrorRecord() = default;
  DecodingErrorRecord(const DecodingErrorRecord& other)
      : kind(other.kind),
        found(other.found),
        pathIsComplete(other.pathIsComplete),
        expected(other.expected),
        excerpt(other.excerpt),
        detail(other.detail),
        leafFirst(other.leafFirst),
        underlying(other.underlying) {}
  ~DecodingErrorRecord() { delete text.load(std::memory_order_acquire); }

  DecodingError::Kind kind{};
  Found found = Found::nothing;
  bool pathIsComplete = false;
  std::string expected;
  std::string excerpt;
  std::string detail;
  std::vector<CodingKey> leafFirst;
  std::exception_ptr underlying;
  std::atomic<const std::string*> text = nullptr;  // the text of what(), built by its first call
  std::atomic<int> owners = 1;
};

}  // namespace detail

inline namespace platform {

namespace {

using detail::DecodingErrorRecord;
using detail::ErrorHolder;

// Lenient decoding of an array with many bad elements creates and discards one error per element. Each thread caches
// the last discarded record with the capacity of its strings, so that such a loop does not allocate.
constexpr std::size_t kSpareCapacity = 256;
constinit thread_local DecodingErrorRecord* spareRecord = nullptr;
constinit thread_local bool threadIsEnding = false;

struct SpareReleaser {
  ~SpareReleaser() {
    threadIsEnding = true;
    delete std::exchange(spareRecord, nullptr);
  }
};

bool isWorthKeeping(const DecodingErrorRecord& record) {
  return record.expected.capacity() <= kSpareCapacity && record.excerpt.capacity() <= kSpareCapacity &&
         record.detail.capacity() <= kSpareCapacity && record.leafFirst.capacity() <= kSpareCapacity / 16;
}

void recycle(DecodingErrorRecord* record) {
  if (spareRecord != nullptr || threadIsEnding || !isWorthKeeping(*record)) {
    delete record;
    return;
  }
  static thread_local const SpareReleaser releaser;
  static_cast<void>(releaser);
  record->leafFirst.clear();
  record->underlying = nullptr;
  delete record->text.exchange(nullptr, std::memory_order_relaxed);
  record->pathIsComplete = false;
  spareRecord = record;
}

DecodingErrorRecord* newRecord() {
  DecodingErrorRecord* record = std::exchange(spareRecord, nullptr);
  return record != nullptr ? record : new DecodingErrorRecord;
}

// At most kExcerptBytes of `text`, cut at a character boundary of UTF-8, with an ellipsis if something was cut off.
constexpr std::size_t kExcerptBytes = 40;
void assignExcerpt(std::string& excerpt, std::string_view text) {
  if (text.size() <= kExcerptBytes) {
    excerpt.assign(text);
    return;
  }
  std::size_t end = kExcerptBytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  excerpt.assign(text.substr(0, end)).append("…");
}

DecodingError makeError(DecodingError::Kind kind, std::string_view expected, Found found, std::string_view excerpt,
                        std::string_view detail = {}) {
  DecodingErrorRecord* record = newRecord();
  ErrorHolder holder(record);
  record->kind = kind;
  record->found = found;
  record->expected.assign(expected);
  assignExcerpt(record->excerpt, excerpt);
  record->detail.assign(detail);
  return DecodingError(std::move(holder));
}

std::string_view nameOf(DecodingError::Kind kind) {
  switch (kind) {
    case DecodingError::Kind::typeMismatch:
      return "typeMismatch";
    case DecodingError::Kind::valueNotFound:
      return "valueNotFound";
    case DecodingError::Kind::keyNotFound:
      return "keyNotFound";
    case DecodingError::Kind::dataCorrupted:
      return "dataCorrupted";
  }
  return "";
}

std::string_view nameOf(Found found) {
  switch (found) {
    case Found::nothing:
      return "the end of the array";
    case Found::null:
      return "null";
    case Found::boolean:
      return "a boolean";
    case Found::number:
      return "a number";
    case Found::string:
      return "a string";
    case Found::array:
      return "an array";
    case Found::object:
      return "an object";
    case Found::date:
      return "a date";
    case Found::data:
      return "data";
    case Found::uid:
      return "a reference";
  }
  return "";
}

}  // namespace

}  // namespace platform

namespace detail {

const DecodingErrorRecord& ErrorHolder::operator*() const {
  if (isDescribed()) return *record_;
  static const auto* const undescribed = new DecodingErrorRecord;
  return *undescribed;
}

void ErrorHolder::retain() const noexcept { record_->owners.fetch_add(1, std::memory_order_relaxed); }

void ErrorHolder::release() noexcept {
  // A sole owner needs no atomic decrement: only an owner can add another one. The acquire load pairs with the
  // releasing decrements of former owners.
  if (record_->owners.load(std::memory_order_acquire) == 1 ||
      record_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    record_->owners.store(1, std::memory_order_relaxed);
    recycle(record_);
  }
}

DecodingErrorRecord& ErrorHolder::own() {
  if (record_->owners.load(std::memory_order_acquire) != 1) *this = ErrorHolder(new DecodingErrorRecord(*record_));
  delete record_->text.exchange(nullptr, std::memory_order_relaxed);
  return *record_;
}

void ErrorHolder::prependKey(CodingKey key) {
  if (!record_->pathIsComplete) own().leafFirst.push_back(std::move(key));
}

void ErrorHolder::complete(const CodingPath& path) {
  if (!isDescribed() || record_->pathIsComplete) return;
  DecodingErrorRecord& record = own();
  for (std::size_t position = path.size(); position > 0; --position) record.leafFirst.push_back(path[position - 1]);
  record.pathIsComplete = true;
}

void ErrorHolder::raise() const {
  if ((**this).underlying) std::rethrow_exception((**this).underlying);
  throw DecodingError(*this);
}

ErrorHolder ErrorHolder::fromCurrentException() {
  const std::exception_ptr exception = std::current_exception();
  DecodingError error = DecodingError::dataCorrupted("an exception not derived from std::exception");
  try {
    throw;
  } catch (const DecodingError& caught) {
    return caught.holder();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& caught) {
    error = DecodingError::dataCorrupted(caught.what());
  } catch (...) {
    if (!exception) throw;  // a thread that is being cancelled
  }
  ErrorHolder holder = std::move(error).holder();
  holder.record_->underlying = exception;
  return holder;
}

}  // namespace detail

inline namespace platform {

DecodingError DecodingError::typeMismatch(std::string_view expected, Found found, std::string_view excerpt) {
  return makeError(Kind::typeMismatch, expected, found, excerpt);
}

DecodingError DecodingError::valueNotFound(std::string_view expected, Found found) {
  return makeError(Kind::valueNotFound, expected, found, {});
}

DecodingError DecodingError::keyNotFound(std::string_view key) {
  return makeError(Kind::keyNotFound, {}, Found::nothing, {}, key);
}

DecodingError DecodingError::dataCorrupted(std::string_view why) {
  return makeError(Kind::dataCorrupted, {}, Found::nothing, {}, why);
}

DecodingError DecodingError::unusable(std::string_view expected, Found found, std::string_view excerpt) {
  return makeError(Kind::dataCorrupted, expected, found, excerpt);
}

DecodingError::Kind DecodingError::kind() const { return (*holder_).kind; }

CodingPath DecodingError::path() const {
  const auto& leafFirst = (*holder_).leafFirst;
  return CodingPath(std::vector<CodingKey>(leafFirst.rbegin(), leafFirst.rend()));
}

std::string DecodingError::expected() const { return (*holder_).expected; }

std::string DecodingError::found() const {
  const DecodingErrorRecord& record = *holder_;
  if (record.expected.empty()) return {};
  switch (record.found) {
    case Found::string:
      return "the string " + quotedForReading(record.excerpt);
    case Found::boolean:
      return record.excerpt.empty() ? "a boolean" : record.excerpt;
    case Found::number:
      return record.excerpt.empty() ? "a number" : "the number " + record.excerpt;
    default:
      return std::string(nameOf(record.found));
  }
}

std::string DecodingError::detail() const { return (*holder_).detail; }

std::exception_ptr DecodingError::underlyingError() const { return (*holder_).underlying; }

std::string DecodingError::description() const {
  std::string text = std::string(nameOf(kind())) + " at " + path().description() + ": ";
  if (kind() == Kind::keyNotFound) return text + "no value for the key " + quotedForReading(detail());
  if (!expected().empty()) return text + "expected " + expected() + ", found " + found();
  return text + detail();
}

const char* DecodingError::what() const noexcept {
  // The record is immutable while shared, except for this text, which several threads may build at a time; one wins.
  auto& slot = const_cast<DecodingErrorRecord&>(*holder_).text;
  const std::string* text = slot.load(std::memory_order_acquire);
  if (text != nullptr) return text->c_str();
  try {
    auto built = std::make_unique<const std::string>(description());
    if (slot.compare_exchange_strong(text, built.get(), std::memory_order_acq_rel)) text = built.release();
    return text->c_str();
  } catch (...) {
    return nameOf(kind()).data();  // no memory for the whole text
  }
}

}  // namespace platform
}  // namespace havrin
