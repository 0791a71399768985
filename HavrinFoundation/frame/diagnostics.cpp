// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/frame/diagnostics.h>

#include <HavrinFoundation/platform/base/diagnosis.h>

namespace havrin {

inline namespace platform {
extern const DiagnosticsSection kImagesSection;
extern const DiagnosticsSection kObserversSection;
extern const DiagnosticsSection kDelayedWorkSection;
extern const DiagnosticsSection kQueuesSection;
}  // namespace platform

namespace {

const DiagnosticsSection* const kSections[] = {&kImagesSection, &kObserversSection, &kDelayedWorkSection,
                                               &kQueuesSection, &kAwaitedLocksSection};

}  // namespace

std::string diagnostics() {
  std::string text;
  for (const DiagnosticsSection* section : kSections) {
    text.append(section->title).append("\n");
    const std::size_t before = text.size();
    section->describe(text);
    if (text.size() == before) text += "  none\n";
  }
  return text;
}

}  // namespace havrin
