// Opens the library by path, with its names kept apart from the program's, closes it and opens it again: it stays.
#include <dlfcn.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  void* first = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (first == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  dlclose(first);
  if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) == nullptr) {
    std::fprintf(stderr, "the library left the process\n");
    return 1;
  }
  return 0;
}
