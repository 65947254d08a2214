// A stand-in for systemd for trying the page of the service by hand:
//
//   fake_service_manager [--deny] MILLISECONDS UNIT...
//
// knows the units ("mirvan.service"), starts and stops them within that time or refuses to, prints the
// variable that leads a console to it, and ends with its standard input.
#include <cstring>
#include <exception>
#include <iostream>
#include <limits>

#include "support/fake_service_manager.h"

int main(int argc, char** argv) {
  using zrl::test::FakeServiceManager;
  const bool denies = argc > 1 && std::strcmp(argv[1], "--deny") == 0;
  const int first = denies ? 2 : 1;
  if (argc < first + 2) {
    std::cerr << "usage: fake_service_manager [--deny] MILLISECONDS UNIT...\n";
    return 2;
  }
  try {
    FakeServiceManager manager(std::chrono::milliseconds(std::stol(argv[first])));
    if (denies) manager.set_manner(FakeServiceManager::Manner::denying);
    for (int i = first + 1; i < argc; ++i) manager.add(argv[i], false);
    std::cout << "DBUS_SYSTEM_BUS_ADDRESS=" << manager.address() << std::endl;
    std::cin.ignore(std::numeric_limits<std::streamsize>::max());
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "fake_service_manager: " << error.what() << "\n";
    return 1;
  }
}
