// Includes the whole library, as a program that knows it from pkg-config.
#include <HavrinFoundation/HavrinFoundation.h>

int main() {
  havrin::Locked<int> box(41);
  return box.perform([](int& value) { return ++value; }) == 42 ? 0 : 1;
}
