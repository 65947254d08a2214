#pragma once

#include <chrono>
#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/mail_message.h"

// Mail messages: read with GMime, sent with libcurl.
namespace zrl::mail {

struct Limits {
  std::chrono::milliseconds connect{15'000};
  std::chrono::milliseconds reply{60'000};  // to one command; and to the mail
  std::chrono::milliseconds total{120'000};
};

// send() serves the console's events while it waits; what they raise ends it. Hosts are looked up by the
// system, and by the console where its look-up asks only the servers that it was told.
std::shared_ptr<MailMessage> make(ConsoleServices& console, Limits limits = {});

}  // namespace zrl::mail
