// SPDX-License-Identifier: Apache-2.0
// Percent escapes of query text, both ways. Internal to net/.
//
//   percentDecoded("a%20b%C3%A9+")   "a bé+"
//   percentDecoded("%E9%zz")         U+FFFD, "%zz"
//   appendQueryEncoded(s, "a b+é")   appends "a%20b%2B%C3%A9"
#pragma once

#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// `text` with its escapes read as UTF-8; ill-formed parts read as U+FFFD. "+" stays, and so does "%" without two
/// hexadecimal digits behind it.
[[nodiscard]] std::string percentDecoded(std::string_view text);

/// Appends `text` as it is written in a name or value of a query item: all but A-Z a-z 0-9 - . _ ~ ! $ ' ( ) * , : @ /
/// ? is escaped, upper case; ill-formed parts are written as U+FFFD.
/// Choice: "+" and ";" are legal there and escaped all the same: some servers read them as a blank and a separator.
/// Source: RFC 3986, 2.1 and 3.4.
void appendQueryEncoded(std::string& result, std::string_view text);

}  // namespace platform
}  // namespace havrin
