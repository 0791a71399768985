// SPDX-License-Identifier: Apache-2.0
// Knows the typed forms alone, and opens the library of objects at run time with its names kept apart from the program's:
// its exported names are found unadorned, and it stays when it is closed.
#include <HavrinFoundation/Typed.h>

#include <cstdio>
#include <dlfcn.h>

int main(int argc, char** argv) {
  if (argc != 2 || havrin::friendlyNumber(1'000) != "1.0k") return 2;
  if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD))
    return std::fputs("the library is there before it is opened\n", stderr), 1;

  void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return std::fprintf(stderr, "%s\n", dlerror()), 1;
  for (const char* name :
       {"GuaranteeMainQueue", "HAV_SHA_256", "HavrinFoundationVersionNumber", "HavrinFoundationVersionString",
        "hlog_create_with_category", "kHLogSubsystem", "kKeyValueObservationContext", "kKeyValueObservationKeyPath"}) {
    if (dlsym(library, name) == nullptr) return std::fprintf(stderr, "%s is not exported\n", name), 1;
  }
  const auto* version = static_cast<const double*>(dlsym(library, "HavrinFoundationVersionNumber"));

  dlclose(library);
  return *version == 1.0 ? 0 : (std::fputs("the library left the process\n", stderr), 1);
}
