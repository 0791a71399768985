// SPDX-License-Identifier: Apache-2.0
// std::invoke for public headers: <functional> costs a file that includes it as much as <string> does.
//
//   detail::invoke([](int n) { return n + 1; }, 1)      2
//   detail::invoke(&Track::title, track)                track.title; &track will do, too
//
// Left out: std::reference_wrapper as the object of a member pointer.
#pragma once

#include <type_traits>
#include <utility>

namespace havrin::detail {

template <class Function, class... Arguments>
constexpr decltype(auto) invoke(Function&& function, Arguments&&... arguments) {
  return std::forward<Function>(function)(std::forward<Arguments>(arguments)...);
}

template <class Member, class Type, class Object, class... Arguments>
constexpr decltype(auto) invoke(Member Type::*member, Object&& object, Arguments&&... arguments) {
  if constexpr (!std::is_base_of_v<Type, std::remove_cvref_t<Object>>) {
    return detail::invoke(member, *std::forward<Object>(object), std::forward<Arguments>(arguments)...);
  } else if constexpr (std::is_function_v<Member>) {
    return (std::forward<Object>(object).*member)(std::forward<Arguments>(arguments)...);
  } else {
    return (std::forward<Object>(object).*member);
  }
}

}  // namespace havrin::detail
