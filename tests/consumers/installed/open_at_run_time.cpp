// Knows the layer, and opens the library at run time with its names kept apart from the program's: its messages arrive,
// its exported names are found unadorned, and it stays when it is closed.
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <dlfcn.h>

#include <cstdio>

using namespace havrin;

namespace {

bool answers(NSArray& array) {
  try {
    return array.performSelector(Selector::named("hav_randomObject")) != nullptr;
  } catch (const NSException&) {
    return false;
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const auto array = makeArray({makeNumber(1)});
  if (answers(*array)) return std::fputs("the message is there before the library\n", stderr), 1;

  void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return std::fprintf(stderr, "%s\n", dlerror()), 1;
  for (const char* name : {"HavrinFoundationVersionNumber", "HavrinFoundationVersionString", "kHLogSubsystem",
                           "hlog_create_with_category"}) {
    if (dlsym(library, name) == nullptr) return std::fprintf(stderr, "%s is not exported\n", name), 1;
  }
  if (!answers(*array)) return std::fputs("the library's messages do not arrive\n", stderr), 1;

  dlclose(library);
  return answers(*array) ? 0 : (std::fputs("the library left the process\n", stderr), 1);
}
