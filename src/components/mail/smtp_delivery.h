#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "components/mail/mail.h"

namespace zrl::mail {

// One mail on its way to a server.
struct SmtpDelivery {
  MailServer server;
  std::vector<std::string> addresses;  // of the server, if they are known already
  std::string sender;                  // addresses that have been checked
  std::vector<std::string> recipients;
  std::string source;  // lines ended by CR LF
  Limits limits;
};

// Delivers the mail as MailMessage::send() promises. Blocks; may run on any thread, since it shares nothing
// but `cancelled`. Gives up within a second after `cancelled` has become true. Raises zrl::Error.
void deliver(const SmtpDelivery& delivery, const std::atomic<bool>& cancelled);

}  // namespace zrl::mail
