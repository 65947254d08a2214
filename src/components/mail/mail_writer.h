#pragma once

#include <string>
#include <vector>

#include "core/contracts/mail_message.h"
#include "core/text/mail_address.h"

namespace zrl::mail {

// The source of a mail (RFC 5322), all ASCII, lines ended by CR LF. Subject and bodies are those of `mail`;
// its sender and recipient are ignored in favour of the mailboxes, which the caller has checked.
std::string write_mail(const Mail& mail, const Mailbox& sender, const std::vector<Mailbox>& recipients);

}  // namespace zrl::mail
