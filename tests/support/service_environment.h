#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <stdlib.h>

#include "support/temporary_folder.h"

namespace zrl::test {

// While it lives, consoles of this process ask the bus of this address, and no program is found but
// the "systemctl" that was made here: no test reaches the services of the machine.
class ServiceEnvironment {
 public:
  ServiceEnvironment() {
    if (const char* path = std::getenv("PATH")) path_ = path;
    ::setenv("PATH", folder_.path().c_str(), 1);
    use_bus("unix:path=" + (folder_.path() / "none").string());
  }
  ServiceEnvironment(const ServiceEnvironment&) = delete;
  ServiceEnvironment& operator=(const ServiceEnvironment&) = delete;
  ~ServiceEnvironment() {
    ::setenv("PATH", path_.c_str(), 1);
    ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
  }

  static void use_bus(const std::string& address) { ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1); }

  // A shell script; its calls are kept, one a line.
  void make_systemctl(const std::string& script) const {
    const auto file = folder_.path() / "systemctl";
    std::ofstream(file) << "#!/bin/sh\necho \"$*\" >> \"$(/usr/bin/dirname \"$0\")/calls\"\n"
                        << script << "\n";
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  }
  std::filesystem::path calls() const { return folder_.path() / "calls"; }

 private:
  TemporaryFolder folder_;
  std::string path_;
};

}  // namespace zrl::test
