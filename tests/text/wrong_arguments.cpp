// SPDX-License-Identifier: Apache-2.0
// Arguments that must not compile: one a case, and none in case 0.
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/links/utm_parameters.h>
#include <HavrinFoundation/platform/application/bundle.h>
#include <HavrinFoundation/platform/base/uuid.h>
#include <HavrinFoundation/text/attributed_strings.h>
#include <HavrinFoundation/text/base36.h>
#include <HavrinFoundation/text/friendly_number.h>
#include <HavrinFoundation/text/string_helpers.h>

using namespace havrin;

void use() {
#if HAVRIN_CASE == 0
  (void)fromOptionalString<NSAttributedString>({});
  (void)fromHexString<UIColor>(std::nullopt);
  (void)repeating<NSString>("ab", 2U, {});
  (void)friendlyNumber<NSString>(7U);
  (void)base36ValueAsBase10("Z");
  (void)UTMParameters{.source = "mail", .term = std::nullopt};
#elif HAVRIN_CASE == 1
  (void)friendlyNumber(true);
#elif HAVRIN_CASE == 2
  (void)base36ValueAsBase10(nullptr);
#elif HAVRIN_CASE == 3
  (void)base36Value(~0ULL);
#elif HAVRIN_CASE == 4
  (void)repeating<NSString>("ab", 'c', {});
#elif HAVRIN_CASE == 5
  (void)repeating<NSString>("ab", 2, nullptr);
#elif HAVRIN_CASE == 6
  (void)fromOptionalString<NSAttributedString>(nullptr);
#elif HAVRIN_CASE == 7
  (void)fromHexString<UIColor>(nullptr);
#elif HAVRIN_CASE == 8
  (void)colorWithHexString(nullptr);
#elif HAVRIN_CASE == 9
  (void)UTMParameters{.source = nullptr};
#elif HAVRIN_CASE == 10
  (void)CharacterSet(nullptr);
#elif HAVRIN_CASE == 11
  (void)UUID::fromString(nullptr);
#elif HAVRIN_CASE == 12
  (void)NSBundle::bundleWithPath(nullptr);
#endif
}
