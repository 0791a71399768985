// SPDX-License-Identifier: Apache-2.0
// NSURL: a link as an object.
//
//   const auto page = NSURL::URLWithString(makeString("https://h/a/b/c"));
//   const auto next = alloc<NSURL>()->initWithStringRelativeToURL(makeString("../d"), page);
//   next->absoluteString()                                         "https://h/a/d"
//   next->description()                                            "../d -- https://h/a/b/c"
//   NSURL::URLWithString(makeString("https://h/my file"))          null: a blank is not allowed
//
// A subclass that overrides `value` works everywhere a link does.
// Left out: what URL leaves out.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/net/url.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdint>
#include <utility>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSURL : public Object<NSURL, NSObject> {
 public:
  using Leaf = NSURL;

  /// A link of no text, for an init message.
  NSURL();
  explicit NSURL(URL url) noexcept : url_(std::move(url)) {}

  /// A new link, as initWithString makes it.
  [[nodiscard]] static Strong<NSURL> URLWithString(NSString* text);

  /// Initialises an allocated link with `text`. Result: the link itself.
  /// Null when: `text` is null or not a URI reference (see URL::fromString).
  virtual Strong<NSURL> initWithString(NSString* text);
  /// The same with a link to see it from; null for none.
  virtual Strong<NSURL> initWithStringRelativeToURL(NSString* text, const NSURL* base);

  /// The same link as a value, which stays as long as the object.
  [[nodiscard]] virtual const URL& value() const { return url_; }

  /// The text as it was given.
  [[nodiscard]] Strong<NSString> relativeString() const;
  /// The text resolved against the base.
  [[nodiscard]] Strong<NSString> absoluteString() const;
  /// The base; null when there is none.
  [[nodiscard]] Strong<NSURL> baseURL() const;
  /// The link of absoluteString(), without a base; itself where there is none.
  [[nodiscard]] Strong<NSURL> absoluteURL() const;

  /// Equal texts and equal bases.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  /// The text, followed by " -- " and the base where there is one.
  [[nodiscard]] Strong<NSString> description() const override;
  /// The link itself.
  [[nodiscard]] Strong<NSObject> copy() const override;

  using Protocols = List<NSSecureCoding>;

 private:
  URL url_;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSURL>();

}  // namespace platform
}  // namespace havrin
