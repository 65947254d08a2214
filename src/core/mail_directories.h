#pragma once

#include <string>

namespace zrl {

class Console;

// The folders of an instance of the mail server, as paths of the product. One that is not set is
// empty.
struct SmtpDirectories {
  std::string drop;
  std::string bad_mail;
  std::string pickup;
  std::string queue;
};

// Reads the string values `SmtpSvc\N\DropDirectory`, `BadMailDirectory`, `PickupDirectory` and
// `QueueDirectory` under the product key, `instance` being N. Never throws.
SmtpDirectories smtp_directories(Console& console, unsigned instance);

}  // namespace zrl
