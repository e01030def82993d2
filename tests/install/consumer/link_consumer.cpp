// Links a platform target and runs: its imported target brings everything
// the library needs (for a static build: the libraries compiled into it).
#include <iostream>

#include <vantu/version.h>

int main() {
  std::cout << "linked " << vantu::libraryVersion() << "\n";
  return vantu::libraryVersion() == VANTU_VERSION_STRING ? 0 : 1;
}
