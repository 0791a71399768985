// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/hex_messages.h>

#include <HavrinFoundation/text/hex.h>

namespace havrin {

std::string hexString(const NSData& data) { return hexString(data.bytes()); }

namespace {

Strong<NSString> hexStringMessage(NSData& self) { return makeString(hexString(self)); }

constexpr MethodRow kRows[] = {row<NSData, "hexString", hexStringMessage>()};

}  // namespace

extern constinit const Category kHexText{classObject<NSData>, "HavrinFoundation", kRows, {}};

}  // namespace havrin
