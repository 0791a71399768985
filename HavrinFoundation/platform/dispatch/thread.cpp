// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/thread.h>

namespace havrin {
inline namespace platform {

Strong<NSThread> NSThread::currentThread() { return RunLoop::current().thread(); }

Strong<NSThread> NSThread::mainThread() { return RunLoop::main().thread(); }

template ClassObject* buildClass<NSThread>();

}  // namespace platform
}  // namespace havrin
