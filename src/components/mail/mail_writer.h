#pragma once

#include <string>
#include <vector>

#include "core/contracts/mail_message.h"
#include "core/text/mail_address.h"

namespace zrl::mail {

// The source of a mail, lines ended by CR LF, nothing in it beyond ASCII; the mailboxes have been
// checked. Takes subject and bodies from `mail`.
std::string write_mail(const Mail& mail, const Mailbox& sender, const std::vector<Mailbox>& recipients);

}  // namespace zrl::mail
