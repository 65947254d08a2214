#pragma once

#include <string_view>

#include "core/contracts/mail_message.h"

namespace zrl::mail {

// Does what MailMessage::parse() promises.
Mail read_mail(std::string_view source);

}  // namespace zrl::mail
