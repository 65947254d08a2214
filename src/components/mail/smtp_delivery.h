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

// As MailMessage::send() promises, in a thread of its own if need be. Gives up within a second after
// `cancelled` became true.
void deliver(const SmtpDelivery& delivery, const std::atomic<bool>& cancelled);

}  // namespace zrl::mail
