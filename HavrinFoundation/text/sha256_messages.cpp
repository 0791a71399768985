// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/sha256_messages.h>

#include <HavrinFoundation/text/sha256.h>

#include <optional>
#include <string>

namespace havrin {

Strong<NSString> HAV_SHA_256(NSString* string) {
  const auto text = string ? strictUtf8(*string) : std::nullopt;
  const auto digest = text ? groupedSHA256(*text) : std::nullopt;
  if (!digest) return nullptr;
  return make<NSMutableString>(*digest);
}

}  // namespace havrin
