#pragma once

#include <chrono>
#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/mail_message.h"

// Mail messages: read with GMime, sent by SMTP (RFC 5321) with libcurl.
namespace zrl::mail {

// How long sending may take. Exceeding any of these makes send() raise zrl::Error.
struct Limits {
  std::chrono::milliseconds connect{15'000};
  std::chrono::milliseconds reply{60'000};  // to one command, or to the mail; rounded up to whole seconds
  std::chrono::milliseconds total{120'000};
};

// Reads and sends mails. send() hands the mail to a thread of its own and serves the console's events until
// that thread has ended; what a handler raises stops the sending and is passed on. All calls, cancel()
// included, are made on the console's thread, and one object sends one mail at a time. The object must not
// outlive the console.
//
// The system looks the server's name up, unless the console's own look-up is restricted to certain servers
// (NameLookup::asks_only_servers()), which are then asked instead. No proxy of the environment is used.
std::shared_ptr<MailMessage> make(ConsoleServices& console, Limits limits = {});

}  // namespace zrl::mail
