// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/diagnosis.h>

#include <HavrinFoundation/platform/base/unfair_lock_word.h>

#include <cstddef>
#include <cstdlib>
#include <set>
#include <string>
#include <unistd.h>

namespace havrin {
inline namespace platform {

constinit std::atomic<DiagnosisSwitch> diagnosisSwitch{DiagnosisSwitch::unread};

namespace {

// What happened and where, and what would be right.
std::string_view textOf(Finding finding) {
  switch (finding) {
    case Finding::unansweredSelector:
      return "{0} has no effect: {1} does not respond to \"{2}\"; expected the selector of a method that {1} or a "
             "superclass lists{3}";
    case Finding::performOnWorker:
      return "{0} is delayed on a worker thread of a queue, which does not run its run loop; expected the main "
             "thread, or a thread that runs RunLoop::current()";
    case Finding::performLost:
      return "{0} was delayed and will not run: its thread ended before its run loop came to it; expected "
             "RunLoop::current().runUntil(...) on that thread, or a thread that lives on";
    case Finding::unknownKey:
      return "{0} is observed for the key \"{1}\", for which it has no getter and no setter; expected the key of a "
             "property or method that {0} or a superclass lists{2}";
    case Finding::unansweredMessage:
      return "{0} was sent, but neither the class nor a category of the loaded images ({1}) has it; expected the "
             "image that adds it to be linked or loaded before{2}";
    case Finding::lateImage:
      return "{0} was sent before the image \"{1}\", which adds it, was loaded; expected the image to be loaded "
             "first";
    case Finding::twoImages:
      return "{0} is added by the image \"{1}\" in {2}, and by the image \"{3}\" in {4}, which answers from now "
             "on; expected a selector with a prefix of its own in each image";
    case Finding::discardedToken:
      return "the KeyValueObservation of {0} for [{1}] ended within a millisecond, before anything changed; "
             "expected it to be kept, in a Strong or by a responder's observeModel:forKeyPath:action:";
    case Finding::outlivedObserver:
      return "the KeyValueObservation of {0} for [{1}] still lives although its observer has gone, and drops its "
             "changes; expected the observer to be the one that keeps it";
    case Finding::goneObserver:
      return "a change of {0} for \"{1}\" is not delivered: the observer has been destroyed; expected it to remove "
             "itself before, with removeObserver:forKeyPath:context:";
  }
  return {};
}

// Never destroyed: late threads may report.
struct Written {
  os_unfair_lock lock;
  std::set<std::string, std::less<>> lines HAVRIN_THREAD_SAFETY(guarded_by(lock));

  static Written& shared() {
    static Written* const kWritten = new Written;
    return *kWritten;
  }
};

std::string filled(std::string_view text, std::initializer_list<std::string_view> parts) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '{') {
      result += parts.begin()[text[i + 1] - '0'];
      i += 2;
    } else {
      result += text[i];
    }
  }
  return result;
}

}  // namespace

bool readDiagnosisSwitch() {
  DiagnosisSwitch known = diagnosisSwitch.load(std::memory_order_relaxed);
  if (known == DiagnosisSwitch::unread) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): changing the environment meanwhile is the program's own race
    const char* value = std::getenv("HAVRIN_DIAGNOSIS");
    const std::string_view text = value == nullptr ? "" : value;
    known = text.empty() || text == "0" ? DiagnosisSwitch::off : DiagnosisSwitch::on;
    diagnosisSwitch.store(known, std::memory_order_relaxed);
  }
  return known == DiagnosisSwitch::on;
}

std::string threadText(pid_t thread) {
  if (thread == 0) return "another thread";
  return thread == getpid() ? "main thread" : "thread " + std::to_string(thread);
}

void report(Finding finding, std::initializer_list<std::string_view> parts) {
  std::string line = "havrin: diagnosis: " + filled(textOf(finding), parts);
  line.append(" (").append(threadText(gettid())).append(")\n");
  Written& written = Written::shared();
  const UnfairLockGuard guard(written.lock);
  if (!written.lines.insert(line).second) return;
  // The result is ignored: a failure to report cannot be reported anywhere.
  [[maybe_unused]] const ssize_t result = ::write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace platform
}  // namespace havrin
