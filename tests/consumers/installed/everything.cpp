// Includes the whole library and uses a little of several rooms.
#include <HavrinFoundation/HavrinFoundation.h>

int main() {
  havrin::Locked<int> box(41);
  return box.perform([](int& value) { return ++value; }) == 42 ? 0 : 1;
}
