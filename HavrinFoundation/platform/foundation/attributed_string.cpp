// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/attributed_string.h>

#include <HavrinFoundation/platform/foundation/range_end.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <algorithm>
#include <string>
#include <utility>

namespace havrin {
inline namespace platform {

namespace {

Strong<NSDictionary> copied(NSDictionary* attributes) {
  if (!attributes) return makeDictionary({});
  return cast<NSDictionary>(static_cast<NSObject*>(attributes->copy()));
}

// The text that cannot change any more: of many attributed strings perhaps the same one.
Strong<NSString> immutable(NSString& string) {
  if (string.isPlain() && !isKind<NSMutableString>(&string)) return Strong<NSString>(&string);
  return makeString(utf16(string));
}

// Calls `body(run)` for each run of any attributed string, in order.
template <class Body>
void forEachRun(const NSAttributedString& text, Body body) {
  const std::uint64_t length = text.length();
  for (std::uint64_t at = 0; at < length;) {
    const NSAttributedString::Run run = text.attributesAtIndex(at);
    at = std::max(endOf(run.range), at + 1);
    body(run);
  }
}

}  // namespace

NSAttributedString::NSAttributedString(NSString* string, NSDictionary* attributes) {
  NSAttributedString::initWithStringAttributes(string, attributes);
}

NSAttributedString::NSAttributedString(NSString* string, std::span<const Run> runs) : runs_(runs.begin(), runs.end()) {
  constexpr std::string_view kSelector = "initWithString:runs:";
  if (!string) throwNullArgument(*this, kSelector, "string");
  string_ = immutable(*string);
  std::uint64_t end = 0;
  for (const Run& run : runs_) {
    if (!run.attributes) throwNullArgument(*this, kSelector, "dictionary of a run");
    const bool follows = run.range.location == end && run.range.length != 0;
    if (!follows || !isWithin(run.range, string_->length())) end = kNotFound;
    if (end == kNotFound) break;
    end = endOf(run.range);
  }
  if (end != string_->length()) throw NSException(NSInvalidArgumentException, "the runs do not cover the text exactly");
}

Strong<NSAttributedString> NSAttributedString::initWithString(NSString* string) {
  return initWithStringAttributes(string, nullptr);
}

Strong<NSAttributedString> NSAttributedString::initWithStringAttributes(NSString* string, NSDictionary* attributes) {
  if (!string) throwNullArgument(*this, "initWithString:attributes:", "string");
  string_ = immutable(*string);
  runs_.clear();
  addRun(copied(attributes), string_->length());
  return Strong<NSAttributedString>(this);
}

Strong<NSString> NSAttributedString::string() const { return string_ ? string_ : makeString(""); }

NSAttributedString::Run NSAttributedString::attributesAtIndex(std::uint64_t index) const {
  const auto run = std::ranges::upper_bound(runs_, index, {}, [](const Run& one) { return endOf(one.range); });
  if (run == runs_.end()) throwIndexBeyond(*this, "attributesAtIndex:effectiveRange:", index, length());
  return *run;
}

bool NSAttributedString::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSAttributedString* text = cast<NSAttributedString>(other);
  if (!text || !string()->isEqual(text->string())) return false;
  const std::uint64_t length = this->length();
  for (std::uint64_t at = 0; at < length;) {
    const Run mine = attributesAtIndex(at), theirs = text->attributesAtIndex(at);
    if (!mine.attributes->isEqual(theirs.attributes)) return false;
    at = std::max(std::min(endOf(mine.range), endOf(theirs.range)), at + 1);
  }
  return true;
}

std::uint64_t NSAttributedString::hash() const { return string()->hash(); }

Strong<NSString> NSAttributedString::description() const {
  const std::u16string units = utf16(*string());
  std::u16string text;
  forEachRun(*this, [&](const Run& run) {
    text += units.substr(run.range.location, run.range.length) + utf16(*run.attributes->description());
  });
  return makeString(text);
}

Strong<NSObject> NSAttributedString::copy() const { return Strong<NSObject>(const_cast<NSAttributedString*>(this)); }

Strong<NSObject> NSAttributedString::mutableCopy() const {
  const auto result = make<NSMutableAttributedString>();
  result->appendAttributedString(this);
  return result;
}

void NSAttributedString::addRun(NSDictionary* attributes, std::uint64_t length) {
  if (length == 0) return;
  if (runs_.empty()) {
    runs_.push_back({attributes, {0, length}});
  } else if (runs_.back().attributes->isEqual(attributes)) {
    runs_.back().range.length += length;
  } else {
    runs_.push_back({attributes, {endOf(runs_.back().range), length}});
  }
}

Strong<NSAttributedString> NSAttributedString::snapshot() const {
  auto result = make<NSAttributedString>();
  result->string_ = string_;
  result->runs_ = runs_;
  return result;
}

void NSMutableAttributedString::appendAttributedString(const NSAttributedString* other) {
  if (!other) throwNullArgument(*this, "appendAttributedString:", "string");
  std::vector<Run> added;  // before anything changes: the other may be this one
  forEachRun(*other, [&added](const Run& run) { added.push_back(run); });
  string_ = makeString(utf16(*string()) + utf16(*other->string()));
  for (const Run& run : added) addRun(run.attributes, run.range.length);
}

void NSMutableAttributedString::setAttributes(NSDictionary* attributes, NSRange range) {
  if (!isWithin(range, length())) throwRangeBeyond(*this, "setAttributes:range:", range, length());
  const Strong<NSDictionary> given = copied(attributes);
  const std::vector<Run> before = std::exchange(runs_, {});
  const auto keep = [this](const Run& run, std::uint64_t from, std::uint64_t to) {
    from = std::max(from, run.range.location);
    to = std::min(to, endOf(run.range));
    if (from < to) addRun(run.attributes, to - from);
  };
  for (const Run& run : before) keep(run, 0, range.location);
  addRun(given, range.length);
  for (const Run& run : before) keep(run, endOf(range), kNotFound);
}

Strong<NSObject> NSMutableAttributedString::copy() const { return snapshot(); }

template ClassObject* buildClass<NSAttributedString>();
template ClassObject* buildClass<NSMutableAttributedString>();

}  // namespace platform
}  // namespace havrin
