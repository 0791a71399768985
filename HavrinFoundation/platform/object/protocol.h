// SPDX-License-Identifier: Apache-2.0
// Protocols: names that classes declare to conform to.
//
//   struct Playable : Protocol<Playable> {};
//   struct Recordable : Protocol<Recordable, Playable> {};      inherits Playable
//   struct Station : Object<Station, NSObject> { using Protocols = List<Recordable>; };
//   make<Station>()->conformsToProtocol(protocolOf<Playable>())         true
//
// Left out: required and optional methods; adoption is declared, implementing the methods is not enough.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <span>
#include <string_view>
#include <typeinfo>

namespace havrin {

namespace detail {

/// Whether both describe one type, in whatever images they are. Some standard libraries compare addresses alone, and
/// images that hide a type have one each.
[[nodiscard]] HAVRIN_EXPORT bool isSameType(const std::type_info& first, const std::type_info& second) noexcept;

}  // namespace detail

inline namespace platform {

/// A protocol at run time. One protocol may have several of these, one per image; compare with ==.
class HAVRIN_EXPORT AnyProtocol {
 public:
  constexpr AnyProtocol(const std::type_info& type, std::string_view name, std::span<const AnyProtocol* const> parents)
      : type_(&type), name_(name), parents_(parents) {}

  [[nodiscard]] std::string_view name() const { return name_; }
  /// True when this is `other` or inherits from it.
  [[nodiscard]] bool inheritsFrom(const AnyProtocol& other) const;
  friend bool operator==(const AnyProtocol& a, const AnyProtocol& b) { return detail::isSameType(*a.type_, *b.type_); }

 private:
  const std::type_info* type_;
  std::string_view name_;
  std::span<const AnyProtocol* const> parents_;
};

template <class Self, class... Parents>
struct Protocol {
  using Inherited = Protocol;
  template <template <class...> class Apply>
  using ParentsTo = Apply<Parents...>;
};

/// The unqualified name of a type, as the source spells it.
template <class Type>
[[nodiscard]] constexpr std::string_view typeName() {
  std::string_view name = __PRETTY_FUNCTION__;
  name.remove_prefix(name.find(" = ") + 3);
  name = name.substr(0, name.find_first_of(";]"));
  const std::string_view plain = name.substr(0, name.find('<'));
  const auto scope = plain.rfind("::");
  return scope == std::string_view::npos ? name : name.substr(scope + 2);
}

template <class Parent>
[[nodiscard]] const AnyProtocol& protocolOf();

}  // namespace platform

namespace detail {
template <class... Parents>
struct ParentProtocols {
  static std::span<const AnyProtocol* const> list() {
    if constexpr (sizeof...(Parents) == 0) {
      return {};
    } else {
      static const AnyProtocol* const kParents[] = {&protocolOf<Parents>()...};
      return kParents;
    }
  }
};
}  // namespace detail

inline namespace platform {

/// The run-time value of a protocol; lives as long as the process.
template <class Parent>
const AnyProtocol& protocolOf() {
  static const AnyProtocol kProtocol(typeid(Parent), typeName<Parent>(),
                                     Parent::Inherited::template ParentsTo<detail::ParentProtocols>::list());
  return kProtocol;
}

}  // namespace platform
}  // namespace havrin
